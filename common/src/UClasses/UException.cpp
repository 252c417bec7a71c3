#include "UException.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <utility>

#include "IUErrorLog.h"
#include "LogRecord.h"
#include "createString.h"

namespace {

constexpr std::size_t kLongestName = 1000;
// The message's limit with its terminator.
using MessageBuffer = std::array<char, 5120>;

constexpr const char* kNoFormat =
    "UException::UException(LPCTSTR lpszMsg, ...) - template parameter is NULL";

}  // namespace

UException::UException(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Init(-1, nullptr, nullptr, 0, format, args);
    va_end(args);
}

UException::UException(int code, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Init(code, nullptr, nullptr, 0, format, args);
    va_end(args);
}

UException::UException(int code, const char* file, const char* function, unsigned int line,
                       const char* format, ...) {
    va_list args;
    va_start(args, format);
    Init(code, file, function, line, format, args);
    va_end(args);
}

UException::UException(const UException& other) { Copy(other); }

UException& UException::operator=(const UException& other) {
    if (this == &other) return *this;
    Cleanup();
    Copy(other);
    return *this;
}

UException::~UException() { Cleanup(); }

const char* UException::operator=(const char* text) {
    // `text` may be the old message.
    const Text old = std::move(m_message);
    Cleanup();
    CopyMessage(text);
    m_errorCode = -1;
    return text;
}

int UException::operator=(int code) {
    Cleanup();
    CopyMessage("unknown exception");
    m_errorCode = code;
    return code;
}

void UException::Init(int code, const char* file, const char* function, unsigned int line,
                      const char* format, va_list args) {
    InitByZero();
    m_errorCode = code;
    if (!SetFileName(file) || !SetFunctionName(function)) return;
    SetLine(line);

    MessageBuffer message{};
    if (format != nullptr && vsnprintf(message.data(), message.size(), format, args) < 0) {
        message.back() = '\0';
    }
    const char* const text = format == nullptr ? kNoFormat : message.data();
    if (CopyMessage(text) != nullptr) WriteToLog(text);
}

void UException::Copy(const UException& other) {
    if (other.m_message) Store(m_message, other.m_message.get());
    if (other.m_fileName) Store(m_fileName, other.m_fileName.get());
    if (other.m_functionName) Store(m_functionName, other.m_functionName.get());
    m_errorCode = other.m_errorCode;
    m_line = other.m_line;
}

void UException::Cleanup() {
    m_message.reset();
    m_functionName.reset();
    m_fileName.reset();
    m_line = 0;
}

void UException::InitByZero() {
    for (Text* const text : {&m_message, &m_functionName, &m_fileName}) {
        static_cast<void>(text->release());
    }
    m_line = 0;
    m_errorCode = 0;
}

bool UException::SetFileName(const char* name) { return StoreName(m_fileName, name); }

bool UException::SetFunctionName(const char* name) { return StoreName(m_functionName, name); }

const char* UException::CopyMessage(const char* text) {
    Store(m_message, text);
    return m_message.get();
}

bool UException::StoreName(Text& field, const char* name) {
    const bool fits = name != nullptr && strnlen(name, kLongestName + 1) <= kLongestName;
    return Store(field, fits ? name : nullptr);
}

bool UException::Store(Text& field, const char* text) {
    // Freed last: `text` may stand in it.
    const Text old = std::move(field);
    if (text == nullptr) return true;
    const std::size_t size = strlen(text) + 1;
    try {
        field.reset(new char[size]);
    } catch (...) {
        HandleException();
        return false;
    }
    memcpy(field.get(), text, size);
    return true;
}

void UException::HandleException() const noexcept {
    if (!std::current_exception()) return;
    try {
        throw;
    } catch (const std::exception& e) {
        WriteToLog(e.what());
    } catch (...) {
        WriteToLog("Unknown exception");
    }
}

void UException::WriteToLog(const char* text) const noexcept {
    try {
        IUErrorLog* const log = errorLog;
        if (log == nullptr) return;
        const bool hasPlace = m_fileName || m_line != 0 || m_functionName;
        CString shown(text);
        if (hasPlace && m_errorCode != -1) {
            const unsigned int code = static_cast<unsigned int>(m_errorCode);
            shown = SFormat("(0x%x) %s", code, static_cast<const char*>(shown));
        }
        log->WriteLogItem(makeLogRecord(1, GetFileName(), m_line, GetFunctionName(), shown));
    } catch (...) {
        // The log is the last place that could have been told.
    }
}
