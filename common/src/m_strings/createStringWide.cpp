// Wide text as 8-bit text, in the characters of the current locale.

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cwchar>

#include "AutoMemory.h"
#include "LogRecord.h"
#include "StrFormat.h"

namespace {

constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
// Bytes kept beyond the converted text, its terminator among them.
constexpr std::size_t kSpareBytes = 5;

void logFailure(const char* message, int error, const SourcePlace& place = SourcePlace::current()) {
    writeLogRecord(2, place, "::createString", StrFormat(message).arg(error));
}

}  // namespace

CString createString(const wchar_t* text, int /*length*/, const char* fallback) {
    if (text == nullptr) return fallback;
    // An empty text sets no error, so the record must not tell an older one.
    errno = 0;
    const std::size_t size = wcstombs(nullptr, text, 0);
    if (size == 0 || size == kFailed) {
        logFailure("Failed while obtaining buffer size (WideCharToMultiByte() error: %1)", errno);
        return fallback;
    }
    const bool fits = size <= INT_MAX - kSpareBytes;
    const AutoMemory buffer(fits ? static_cast<int>(size + kSpareBytes) : 0);
    if (buffer.getPtr() == nullptr) {
        logFailure("Failed to allocate memory (error: %1)", errno);
        return fallback;
    }
    char* const bytes = reinterpret_cast<char*>(buffer.getPtr());
    const std::size_t converted = wcstombs(bytes, text, buffer.getSize());
    if (converted == 0 || converted == kFailed) {
        logFailure(
            "Failed to convert wide-char string to multi-byte (WideCharToMultiByte() error: %1)",
            errno);
        return fallback;
    }
    return {bytes, static_cast<int>(converted)};
}

CString createString(const std::wstring& text) { return createString(text.c_str(), -1, ""); }

CString createStringLimit(const wchar_t* text, int limit) { return createString(text, limit, ""); }
