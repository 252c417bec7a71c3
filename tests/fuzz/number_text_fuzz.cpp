// Any text as a number, a flag or an address: the value and whether it was acceptable are those of
// a grammar that is written out here character for character.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <string>

#include "NumberText.h"
#include "ScanNumber.h"
#include "fuzz_input.h"

namespace {

constexpr char kSpace[] = " \t\n\v\f\r";
constexpr char kDigits[] = "0123456789";

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kSpace) + 1 - first);
}

bool consistsOf(const std::string& text, const std::string& characters) {
    return text.find_first_not_of(characters) == std::string::npos;
}

// A sign and the digits behind it.
struct Number {
    bool negative = false;
    std::string digits;  // without leading zeros

    static std::optional<Number> at(const std::string& text) {
        std::size_t from = std::min(text.find_first_not_of(kSpace), text.size());
        Number number;
        if (from < text.size() && (text[from] == '-' || text[from] == '+')) {
            number.negative = text[from++] == '-';
        }
        const std::string rest = text.substr(from);
        const std::string digits = rest.substr(0, rest.find_first_not_of(kDigits));
        if (digits.empty()) return std::nullopt;
        number.digits = digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
        return number;
    }

    // The absolute value, or `most` where it is larger.
    unsigned long long magnitude(unsigned long long most) const {
        unsigned long long value = 0;
        for (const char digit : digits) {
            const auto added = static_cast<unsigned long long>(digit - '0');
            if (value > (most - added) / 10) return most;
            value = value * 10 + added;
        }
        return value;
    }

    // As the C library has it for unsigned numbers: too large a one is the largest.
    unsigned long long wrapped() const {
        const std::string largest = std::to_string(ULLONG_MAX);
        const bool tooLarge =
            digits.size() > largest.size() || (digits.size() == largest.size() && digits > largest);
        const unsigned long long value = magnitude(ULLONG_MAX);
        return negative && !tooLarge ? 0 - value : value;
    }

    long long clamped(long long least, long long most) const {
        const auto limit = static_cast<unsigned long long>(most) + (negative ? 1 : 0);
        const unsigned long long value = magnitude(limit);
        if (!negative) return static_cast<long long>(value);
        return value == limit ? least : -static_cast<long long>(value);
    }
};

void checkNumbers(const std::string& text, unsigned int def) {
    const std::string inner = trimmed(text);
    const bool isANumber = !inner.empty() && consistsOf(inner, "0123456789-");
    const std::optional<Number> number = Number::at(text);
    const auto signedDef = static_cast<int>(def);
    bool ok = !isANumber;

    EXPECT_EQ(isNumber(text.c_str()), isANumber);
    EXPECT_EQ(SScanInt(text.c_str()).has_value(), number.has_value());
    if (number) {
        EXPECT_EQ(SScanInt(text.c_str()), number->clamped(INT_MIN, INT_MAX));
    }

    EXPECT_EQ(toInt(text.c_str(), signedDef, &ok),
              isANumber && number ? number->clamped(INT_MIN, INT_MAX) : signedDef);
    EXPECT_EQ(ok, isANumber);

    const long long wide = number ? number->clamped(LLONG_MIN, LLONG_MAX) : 0;
    ok = !isANumber;
    EXPECT_EQ(toINT64(text.c_str(), signedDef, &ok), isANumber ? wide : signedDef);
    EXPECT_EQ(ok, isANumber);

    const unsigned long long wrapped = number ? number->wrapped() : 0;
    ok = !isANumber;
    EXPECT_EQ(toUINT64(text.c_str(), def, &ok), isANumber ? wrapped : def);
    EXPECT_EQ(ok, isANumber);

    const bool isNarrow = isANumber && wrapped <= USHRT_MAX;
    const auto narrowDef = static_cast<unsigned short>(def);
    ok = !isNarrow;
    EXPECT_EQ(toUINT16(text.c_str(), narrowDef, &ok), isNarrow ? wrapped : narrowDef);
    EXPECT_EQ(ok, isNarrow);
}

// Nothing when the text is not acceptable.
std::optional<unsigned int> dwordOf(const std::string& text) {
    const std::string inner = trimmed(text);
    if (inner.starts_with("0x") || inner.starts_with("0X")) {
        const auto run =
            std::min(inner.find_first_not_of("XxABCDEFabcdef0123456789"), inner.size());
        if (run < 3 || run > 10) return std::nullopt;
        const std::string digits = inner.substr(2);
        unsigned int value = 0;
        for (const char c : digits.substr(0, digits.find_first_not_of("ABCDEFabcdef0123456789"))) {
            value =
                value * 16 + static_cast<unsigned int>(c <= '9' ? c - '0' : (c | 32) - 'a' + 10);
        }
        return value;
    }
    if (inner.empty() || inner.size() > 11 || !consistsOf(inner, "0123456789-")) {
        return std::nullopt;
    }
    const std::optional<Number> number = Number::at(inner);
    if (!number) return 0;
    const unsigned long long value = number->magnitude(ULLONG_MAX);
    if (value > (number->negative ? 0 : UINT_MAX)) return std::nullopt;
    return static_cast<unsigned int>(value);
}

// Reads as scanf's "%3u": white space, and a number of up to three characters with its sign.
std::optional<unsigned int> takeOctet(std::string& text) {
    text.erase(0, std::min(text.find_first_not_of(kSpace), text.size()));
    const bool isSigned = !text.empty() && (text[0] == '-' || text[0] == '+');
    const std::size_t first = isSigned ? 1 : 0;
    const std::size_t end =
        std::min({text.find_first_not_of(kDigits, first), text.size(), std::size_t{3}});
    if (end <= first) return std::nullopt;
    const auto value = static_cast<unsigned int>(std::stoi(text.substr(0, end)));
    text.erase(0, end);
    return value;
}

std::optional<unsigned int> addressOf(std::string text) {
    unsigned int address = 0;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            if (text.empty() || text[0] != '.') return std::nullopt;
            text.erase(0, 1);
        }
        const std::optional<unsigned int> octet = takeOctet(text);
        if (!octet) return std::nullopt;
        address |= (*octet & 255) << (24 - 8 * i);
    }
    return trimmed(text).empty() ? std::optional(address) : std::nullopt;
}

std::string lowered(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 32) : c;
    return text;
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const unsigned int def = input.number();
    const std::string text = input.line();
    checkNumbers(text, def);

    const std::optional<unsigned int> dword = dwordOf(text);
    bool ok = !dword;
    EXPECT_EQ(toDWORD(text.c_str(), def, &ok), dword.value_or(def));
    EXPECT_EQ(ok, dword.has_value());

    const std::string flag = lowered(trimmed(text));
    const bool isFlag = flag == "true" || flag == "false";
    EXPECT_EQ(toBool(text.c_str(), def % 2 == 1), isFlag ? flag == "true" : def % 2 == 1);

    const std::optional<unsigned int> address = addressOf(text);
    ok = !address;
    EXPECT_EQ(strIPtoDWORD(text.c_str(), def, &ok), address.value_or(def));
    EXPECT_EQ(ok, address.has_value());
    EXPECT_EQ(strIPtoDWORD(IPv4toString(__builtin_bswap32(def))), def);
}
