#include "NumberText.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "ScanNumber.h"
#include "UGuarded.h"
#include "URaise.h"
#include "m_type_conversion.h"

namespace {

constexpr char kNumberCharacters[] = "0123456789-";

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

// The length of the run of `characters` that `text` begins with.
std::size_t runOf(std::string_view text, const char* characters) {
    const std::size_t end = text.find_first_not_of(characters);
    return end == std::string_view::npos ? text.size() : end;
}

void set(bool* ok, bool value) {
    if (ok != nullptr) *ok = value;
}

// What `read` reads from a text for which isNumber holds. It needs no copy of the text: it skips
// white space in front, and stops at what stands behind the number.
template <class Number, class Read>
Number numberOr(const char* text, Number def, bool* ok, Read read) {
    const bool acceptable = isNumber(text);
    set(ok, acceptable);
    return acceptable ? read(text) : def;
}

// The value of a text of one to nine digits and nothing else, as nearly every number is.
std::optional<int> fewDigits(const char* text) {
    int value = 0;
    const char* at = text;
    for (; *at >= '0' && *at <= '9' && at - text < 9; ++at) value = value * 10 + (*at - '0');
    if (at == text || *at != '\0') return std::nullopt;
    return value;
}

// Runs `convert`; what it raises ends here and gives `def`.
template <class Value, class Convert>
Value guarded(const UCaughtIn& in, Value def, bool* ok, Convert convert) {
    Value result = def;
    set(ok, false);
    UGuarded(
        in,
        [&] {
            result = convert();
            set(ok, true);
        },
        UCaughtText::ofException);
    return result;
}

bool hasHexPrefix(std::string_view text) {
    return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

unsigned int readHexDword(std::string_view text) {
    const std::size_t run = runOf(text, "XxABCDEFabcdef0123456789");
    if (run > 10 || run < 3) URaise("toDWORD()", "invalid a_str");
    return static_cast<unsigned int>(std::strtoul(text.data(), nullptr, 16));
}

unsigned int readDecimalDword(std::string_view text) {
    const std::size_t run = runOf(text, kNumberCharacters);
    if (run > 11 || run != text.size()) URaise("toDWORD()", "invalid a_str");
    const long long value = std::strtoll(text.data(), nullptr, 10);
    if (value < 0 || value > UINT_MAX) URaise("toDWORD()", "out of range a_str");
    return static_cast<unsigned int>(value);
}

unsigned int readDword(const char* text) {
    if (text == nullptr) URaise("toDWORD()", "a_str is NULL");
    const std::string_view number = trimmed(text);
    if (number.empty()) URaise("toDWORD()", "a_str is empty string");
    return hasHexPrefix(number) ? readHexDword(number) : readDecimalDword(number);
}

// The address of a text of digits and three points alone, which nearly every one is; nothing of
// any other text, be it acceptable or not.
std::optional<unsigned int> readPlainAddress(const char* text) {
    unsigned int address = 0;
    for (int place = 0; place < 4; ++place) {
        if (place > 0 && *text++ != '.') return std::nullopt;
        unsigned int part = 0;
        int digits = 0;
        for (; digits < 3 && *text >= '0' && *text <= '9'; ++digits) {
            part = part * 10 + static_cast<unsigned int>(*text++ - '0');
        }
        if (digits == 0) return std::nullopt;
        address = (address << 8) + (part & 255);
    }
    if (*text != '\0') return std::nullopt;
    return address;
}

// The address of any text that has one: numbers may have blanks and a sign in front.
std::optional<unsigned int> readAddress(const char* text) {
    unsigned int part[4] = {};
    char rest[10];
    const int read =
        std::sscanf(text, "%3u.%3u.%3u.%3u%9s", &part[0], &part[1], &part[2], &part[3], rest);
    if (read != 4) return std::nullopt;
    return (part[0] << 24) + ((part[1] & 255) << 16) + ((part[2] & 255) << 8) + (part[3] & 255);
}

// Compares with a word of lower-case ASCII letters.
bool isWord(std::string_view text, std::string_view word) {
    return std::ranges::equal(text, word, [](char c, char lower) {
        return c == lower || (c >= 'A' && c <= 'Z' && c - 'A' + 'a' == lower);
    });
}

bool readBool(const char* text) {
    const std::string_view flag = trimmed(text != nullptr ? text : "");
    const bool isTrue = isWord(flag, "true");
    if (!isTrue && !isWord(flag, "false")) {
        URaise("toBool()", "unknow value, expected 'true' or 'false'");
    }
    return isTrue;
}

}  // namespace

bool isNumber(const char* text) {
    if (text == nullptr) return false;
    while (isSpace(*text)) ++text;
    const std::size_t run = std::strspn(text, kNumberCharacters);
    const char* end = text + run;
    while (isSpace(*end)) ++end;
    return run > 0 && *end == '\0';
}

int toInt(const char* text, int def, bool* ok) {
    if (text != nullptr) {
        if (const auto value = fewDigits(text)) {
            set(ok, true);
            return *value;
        }
    }
    return numberOr(text, def, ok, [def](const char* t) { return SScanInt(t).value_or(def); });
}

long long toINT64(const char* text, long long def, bool* ok) {
    return numberOr(text, def, ok, [](const char* t) { return std::strtoll(t, nullptr, 10); });
}

unsigned long long toUINT64(const char* text, unsigned long long def, bool* ok) {
    return numberOr(text, def, ok, [](const char* t) { return std::strtoull(t, nullptr, 10); });
}

unsigned short toUINT16(const char* text, unsigned short def, bool* ok) {
    bool isAcceptable = false;
    bool isNarrow = false;
    const unsigned short result = guarded("toUINT16() - EXCEPTION", def, &isNarrow, [&] {
        return UINT64ToUINT16(toUINT64(text, def, &isAcceptable));
    });
    set(ok, isAcceptable && isNarrow);
    return result;
}

unsigned int toDWORD(const char* text, unsigned int def, bool* ok) {
    return guarded("toDWORD() - EXCEPTION", def, ok, [text] { return readDword(text); });
}

bool toBool(const char* text, bool def) {
    return guarded("toInt() - EXCEPTION", def, nullptr, [text] { return readBool(text); });
}

unsigned int strIPtoDWORD(const char* text, unsigned int def, bool* ok) {
    std::optional<unsigned int> address;
    if (text != nullptr) {
        address = readPlainAddress(text);
        if (!address) address = readAddress(text);
    }
    set(ok, address.has_value());
    return address.value_or(def);
}

CString IPv4toString(unsigned int addr) {
    CString text;
    text.Format("%d.%d.%d.%d", static_cast<int>(addr & 255), static_cast<int>(addr >> 8 & 255),
                static_cast<int>(addr >> 16 & 255), static_cast<int>(addr >> 24));
    return text;
}
