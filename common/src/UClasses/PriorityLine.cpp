#include "PriorityLine.h"

#include <charconv>
#include <cstring>
#include <new>

char* PriorityLine::writeColumn(char* out, int priority) {
    constexpr char kEmptyFields[] = ",,,, ";
    constexpr std::size_t kLength = sizeof kEmptyFields - 1;
    char* const end = std::to_chars(out, out + kMaxColumn - kLength, priority).ptr;
    std::memcpy(end, kEmptyFields, kLength);
    return end + kLength;
}

PriorityLine::PriorityLine(int priority, const char* text) {
    if (text == nullptr) text = "";
    const std::size_t size = std::strlen(text) + 1;
    char* line = m_short.data();
    if (size > m_short.size() - kMaxColumn) {
        m_long.reset(new (std::nothrow) char[kMaxColumn + size]);
        line = m_long.get();
    }
    m_line = line;
    if (line != nullptr) std::memcpy(writeColumn(line, priority), text, size);
}
