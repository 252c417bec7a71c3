#include "PrintfArguments.h"

#include <cstring>
#include <cwchar>
#include <functional>

namespace {

bool isDigit(char ch) { return ch >= '0' && ch <= '9'; }

}  // namespace

PrintfArguments::PrintfArguments(const char* format, va_list args, const char* own,
                                 std::size_t size)
    : m_at(format), m_own(own), m_ownSize(size) {
    va_copy(m_args, args);
}

PrintfArguments::~PrintfArguments() { va_end(m_args); }

PrintfArguments::Conversion PrintfArguments::At(const char* percent) {
    while (m_at != nullptr && m_at <= percent && Next()) {
    }
    return m_last.begin == percent ? m_last : Conversion();
}

bool PrintfArguments::TookOwnText() {
    while (m_at != nullptr && Next()) {
    }
    return m_tookOwnText;
}

// Reads one conversion; at the end of the format, or of what can be read, m_at is null from then
// on.
bool PrintfArguments::Next() {
    m_at = strchr(m_at, '%');
    if (m_at == nullptr) return false;
    Conversion conversion;
    conversion.begin = m_at++;
    m_at += strspn(m_at, "-+ #0'");
    bool known = ReadNumber(conversion.width);
    if (known && *m_at == '.') {
        ++m_at;
        known = ReadNumber(conversion.precision);
    }
    if (known) {
        m_last = conversion;
        const Length length = ReadLength();
        known = TakeArgument(length, *m_at);
    }
    m_at = known ? m_at + 1 : nullptr;
    return known;
}

// A width or precision: digits, '*' or nothing; a position ("1$") is refused.
bool PrintfArguments::ReadNumber(int& fromList) {
    const bool star = *m_at == '*';
    if (star) ++m_at;
    while (isDigit(*m_at)) ++m_at;
    if (*m_at == '$') return false;
    if (star) fromList = va_arg(m_args, int);
    return true;
}

PrintfArguments::Length PrintfArguments::ReadLength() {
    const char first = *m_at;
    if (first == '\0' || strchr("hlqjztL", first) == nullptr) return Length::none;
    ++m_at;
    if ((first == 'h' || first == 'l') && *m_at == first) ++m_at;
    if (first == 'h') return Length::none;
    return first == 'L' ? Length::longDouble : Length::longer;
}

template <typename T>
void PrintfArguments::Skip() {
    static_cast<void>(va_arg(m_args, T));
}

bool PrintfArguments::TakeArgument(Length length, char conversion) {
    switch (conversion) {
        case '%':
        case 'm':
            return true;
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            length == Length::none ? Skip<int>() : Skip<long long>();
            return true;
        case 'c':
        case 'C':
            static_assert(sizeof(wint_t) == sizeof(int));
            Skip<int>();
            return true;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            length == Length::longDouble ? Skip<long double>() : Skip<double>();
            return true;
        case 's':
            TakeText(length);
            return true;
        case 'S':
        case 'p':
        case 'n':
            Skip<void*>();
            return true;
        default:
            return false;
    }
}

void PrintfArguments::TakeText(Length length) {
    const char* const text = va_arg(m_args, const char*);
    if (length != Length::none) return;
    m_last.text = text;
    m_tookOwnText |= !std::less<>()(text, m_own) && std::less<>()(text, m_own + m_ownSize);
}
