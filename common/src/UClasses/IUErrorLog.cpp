#include "IUErrorLog.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

#include "PriorityLine.h"

namespace {

// One item of the two formatting writers, its terminator included.
using ItemBuffer = std::array<char, 5120>;

constexpr unsigned int kHexValuesPerLine = 32;

// The text of one item, or the complaint for a missing format.
__attribute__((format(printf, 3, 0))) const char* formatItem(ItemBuffer& item,
                                                             const char* complaint,
                                                             const char* format, va_list args) {
    if (format == nullptr) return complaint;
    if (vsnprintf(item.data(), item.size(), format, args) < 0) item.front() = '\0';
    return item.data();
}

int writeWithPriority(IUErrorLog& log, int priority, const char* text) {
    const PriorityLine line(priority, text);
    return line.text() != nullptr ? log.WriteLogItem(line.text()) : -1;
}

}  // namespace

int IUErrorLog::WriteLog(const char* format, ...) {
    ItemBuffer item;
    va_list args;
    va_start(args, format);
    const char* text = formatItem(
        item, "IUErrorLog::WriteLog(LPCTSTR lpszMsg, ...) - template is NULL\n", format, args);
    va_end(args);
    return WriteErrorStr(text);
}

int IUErrorLog::WriteLog(int priority, const char* format, ...) {
    if (priority > GetLogLevel()) return 0;
    ItemBuffer item;
    va_list args;
    va_start(args, format);
    const char* text = formatItem(
        item, "IUErrorLog::WriteLog(int a_iPriority, LPCTSTR lpszMsg, ...) - template is NULL\n",
        format, args);
    va_end(args);
    return priority != 0 ? WriteLogStr(priority, text) : WriteErrorStr(text);
}

int IUErrorLog::WriteLogStr(const char* text) {
    return GetLogLevel() >= 1 ? WriteErrorStr(text) : 0;
}

int IUErrorLog::WriteLogStr(int priority, const char* text) {
    return GetLogLevel() >= 1 ? writeWithPriority(*this, priority, text) : 0;
}

int IUErrorLog::WriteErrorStr(const char* text) { return writeWithPriority(*this, 0, text); }

int IUErrorLog::WriteAsHex(int priority, unsigned char* data, unsigned int length) {
    if (GetLogLevel() < priority || data == nullptr) return 0;
    while (length > 0) {
        const unsigned int count = std::min(length, kHexValuesPerLine);
        std::array<char, kHexValuesPerLine * 3 + 2> line;
        char* end = line.data();
        for (unsigned int i = 0; i < count; ++i) end += snprintf(end, 4, " %2X", data[i]);
        end[0] = '\n';
        end[1] = '\0';
        WriteLog(priority, "%s", line.data());
        data += count;
        length -= count;
    }
    return 0;
}

int IUErrorLog::GetLogLevel() { return m_level.load(std::memory_order_relaxed); }

int IUErrorLog::SetLogLevel(int level) {
    const int stored = level == 0 ? 1 : level;
    if (m_level.exchange(stored, std::memory_order_relaxed) != stored) {
        WriteLog(0, "log level has been changed to %d\n", stored);
    }
    return 0;
}

void IUErrorLog::setParam(const char* /*name*/, const char* /*value*/) {}
