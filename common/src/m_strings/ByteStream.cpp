#include "ByteStream.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "TextLength.h"
#include "URaise.h"

namespace {

constexpr char kFunction[] = "StringToByteStream()";
constexpr std::size_t kFailed = static_cast<std::size_t>(-1);

// Room behind the text for a terminator of whatever width.
constexpr std::size_t kNarrowRoom = 2;
constexpr std::size_t kWideRoom = 8;

static_assert(sizeof(wchar_t) == 4);

unsigned int store(AutoMemory& out, const void* data, std::size_t size, std::size_t room) {
    out.malloc(textLength(size + room));
    std::memcpy(out.getPtr(), data, size);
    return static_cast<unsigned int>(size);
}

std::wstring toWide(const char* text) {
    const std::size_t count = std::mbstowcs(nullptr, text, 0);
    if (count == kFailed) URaise(kFunction, "MultiByteToWideChar() failed");
    std::wstring wide(count, L'\0');
    std::mbstowcs(wide.data(), text, count);
    return wide;
}

unsigned int storeNarrow(AutoMemory& out, const wchar_t* text) {
    const std::size_t size = std::wcstombs(nullptr, text, 0);
    if (size == kFailed) URaise(kFunction, "WideCharToMultiByte() failed");
    std::string narrow(size, '\0');
    if (std::wcstombs(narrow.data(), text, size) == kFailed) {
        URaise(kFunction, "WideCharToMultiByte() || failed");
    }
    return store(out, narrow.data(), size, kNarrowRoom);
}

}  // namespace

unsigned int StringToByteStream(const CString& text, AutoMemory& out, int mode) {
    if (text.IsEmpty()) return 0;
    if (mode == kStreamAsIs) {
        return store(out, text, static_cast<std::size_t>(text.GetLength()), kNarrowRoom);
    }
    const std::wstring wide = toWide(text);
    if (mode != kStreamWide) return storeNarrow(out, wide.c_str());
    return store(out, wide.data(), wide.size() * sizeof(wchar_t), kWideRoom);
}

unsigned int StringToByteStream(const wchar_t* text, AutoMemory& out, int /*mode*/) {
    if (text == nullptr || *text == L'\0') return 0;
    return storeNarrow(out, text);
}
