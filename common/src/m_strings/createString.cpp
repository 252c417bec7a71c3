#include "createString.h"

#include <array>
#include <charconv>
#include <cstring>

namespace {

// What the estimate of a printf conversion reserves for an integer.
constexpr int kNumberRoom = 32;
// Room for the digits and the sign of any 64-bit number.
using Digits = std::array<char, 25>;

// The text that "%d", "%u" or "%x" gives, in the room that a formatted text has.
template <typename Number>
CString formattedNumber(Number value) {
    CString text;
    char* const begin = text.GetBuffer(kNumberRoom);
    text.ReleaseBuffer(
        static_cast<int>(std::to_chars(begin, begin + kNumberRoom, value).ptr - begin));
    return text;
}

// The same for texts that fit their digits.
template <typename Number>
CString exactNumber(Number value) {
    Digits digits;
    const char* const end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    return {digits.data(), static_cast<int>(end - digits.data())};
}

template <typename Number>
CString& appendNumber(CString& target, Number value) {
    Digits digits;
    *std::to_chars(digits.begin(), digits.end(), value).ptr = '\0';
    return target += digits.data();
}

}  // namespace

CString SFormat(const char* format, ...) {
    CString text;
    va_list args;
    va_start(args, format);
    text.FormatV(format, args);
    va_end(args);
    return text;
}

CString createString(const void* pointer) {
    return pointer == nullptr ? CString("0x0000000000000000") : SFormat("%p", pointer);
}

CString createString(const CString& text) { return text; }

CString createString(const char* text, int length, const char* fallback) {
    if (text == nullptr) return fallback;
    if (length <= 0) return text;
    return {text, static_cast<int>(strnlen(text, static_cast<std::size_t>(length)))};
}

CString createString(unsigned int /*codePage*/, const char* text, int length,
                     const char* fallback) {
    return createString(text, length, fallback);
}

CString createString(float value) { return SFormat("%f", static_cast<double>(value)); }

CString createString(double value) { return SFormat("%lf", value); }

CString createString(bool value) { return value ? "true" : "false"; }

CString createString(char value) { return SFormat("%c", value); }

CString createString(short value) { return formattedNumber(int{value}); }

CString createString(int value) { return formattedNumber(value); }

CString createString(long value) { return formattedNumber(static_cast<int>(value)); }

CString createString(unsigned char value) { return formattedNumber(unsigned{value}); }

CString createString(unsigned short value) { return formattedNumber(unsigned{value}); }

CString createString(unsigned int value) { return formattedNumber(value); }

CString createString(unsigned long value) {
    return formattedNumber(static_cast<unsigned int>(value));
}

CString createString(long long value) { return exactNumber(value); }

CString createString(unsigned long long value) { return exactNumber(value); }

CString createString(const std::string& text) { return createString(text.c_str(), -1, ""); }

CString createStringLimit(const char* text, int limit) {
    if (text == nullptr || limit <= 0) return createString(text, -1, "");
    return createString(text, limit, "");
}

CString& addToString(CString& target, int value) { return appendNumber(target, value); }

CString& addToString(CString& target, unsigned int value) { return appendNumber(target, value); }

CString& addToString(CString& target, unsigned long long value) {
    return appendNumber(target, value);
}

CString& addToString(CString& target, unsigned char value) {
    return appendNumber(target, unsigned{value});
}

CString& addToString(CString& target, const char* text) { return target += text; }

CString& addToString(CString& target, const CString& text) { return target += text; }

CString toHex(unsigned long long value) {
    Digits digits{'0', 'x'};
    const char* const end = std::to_chars(digits.begin() + 2, digits.end(), value, 16).ptr;
    return {digits.data(), static_cast<int>(end - digits.data())};
}
