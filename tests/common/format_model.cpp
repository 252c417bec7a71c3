#include "format_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "CString.h"
#include "text_of.h"

namespace {

enum class Kind { none, integer, longLong, text, number };

// A conversion, and what printf takes for it.
struct Sample {
    std::string text;
    std::vector<Kind> takes;
};

const std::vector<Sample>& samples() {
    using enum Kind;
    static const std::vector<Sample> all = {
        {"literal ", {}},
        {"%%", {}},
        {"%d", {integer}},
        {"%u", {integer}},
        {"%x", {integer}},
        {"%c", {integer}},
        {"%s", {text}},
        {"%s", {text}},
        {"%i", {integer}},
        {"%o", {integer}},
        {"%X", {integer}},
        {"%#x", {integer}},
        {"%5d", {integer}},
        {"%-40d", {integer}},
        {"%+.3d", {integer}},
        {"%05d", {integer}},
        {"%hd", {integer}},
        {"%hhu", {integer}},
        {"%3c", {integer}},
        {"%10s", {text}},
        {"%-10s", {text}},
        {"%.3s", {text}},
        {"%10.2s", {text}},
        {"%.0s", {text}},
        {"%*d", {integer, integer}},
        {"%.*d", {integer, integer}},
        {"%*s", {integer, text}},
        {"%.*s", {integer, text}},
        {"%ld", {longLong}},
        {"%lld", {longLong}},
        {"%llx", {longLong}},
        {"%lu", {longLong}},
        {"%qd", {longLong}},
        {"%zu", {longLong}},
        {"%jd", {longLong}},
        {"%td", {longLong}},
        {"%f", {number}},
        {"%.2f", {number}},
        {"%e", {number}},
        {"%g", {number}},
        {"%E", {number}},
        {"%F", {number}},
        {"%lf", {number}},
        {"%130.1f", {number}},
        {"%p", {text}},
        {"%'d", {integer}},
    };
    return all;
}

constexpr std::size_t kArguments = 3;

struct Case {
    std::string format;
    std::array<Kind, kArguments> kinds{};
    std::array<int, kArguments> integers{};
    std::array<long long, kArguments> longs{};
    std::array<const char*, kArguments> texts{};
    std::array<double, kArguments> numbers{};
    // The arguments that start at each '%' of the format.
    std::map<std::size_t, std::size_t> firstArgument;
};

bool isOneOf(const std::string& letter, const std::string& letters) {
    return !letter.empty() && letters.find(letter) != std::string::npos;
}

// What an item consists of by the rule of the estimate, cut out of the format in this order.
struct ItemText {
    std::string flags, width, precision, size, conversion;
    std::size_t length;

    ItemText(const std::string& format, std::size_t at) : length(1) {
        const auto take = [&](const char* letters, std::size_t limit) {
            const std::size_t from = at + length;
            const std::size_t end =
                std::min(format.find_first_not_of(letters, from), format.size());
            const std::string taken = format.substr(from, std::min(end - from, limit));
            length += taken.size();
            return taken;
        };
        flags = take("-+0 #*", format.size());
        // A '*' is the whole width: digits behind it are no part of the item.
        if (!starred()) width = take("0123456789", format.size());
        precision = take(".", 1);
        if (!precision.empty()) {
            const std::string star = take("*", 1);
            precision += star.empty() ? take("0123456789", format.size()) : star;
        }
        size = take("hlFLN", 1);
        conversion = format.substr(std::min(at + length, format.size()), 1);
        length += conversion.size();
    }

    bool starred() const { return flags.find('*') != std::string::npos; }
};

// The argument of a "*"; one that printf does not take is 0.
int integerAt(const Case& c, std::size_t index) {
    return index < kArguments ? c.integers[index] : 0;
}

std::size_t referenceEstimate(const Case& c) {
    long long total = 0;
    for (std::size_t at = 0; at < c.format.size();) {
        if (c.format[at] != '%' || c.format.compare(at, 2, "%%") == 0) {
            ++total;
            at += c.format[at] == '%' ? 2 : 1;
            continue;
        }
        const ItemText item(c.format, at);
        // "%F" swallows the '%' behind it, so that the estimate meets items that printf does not.
        const auto known = c.firstArgument.find(at);
        std::size_t next = known == c.firstArgument.end() ? kArguments : known->second;
        total += 2 * std::count(item.flags.begin(), item.flags.end(), '#');
        const long long width =
            item.starred() ? integerAt(c, next++) : std::atoi(item.width.c_str());
        bool precise = !item.precision.empty();
        long long precision = precise ? std::atoi(item.precision.c_str() + 1) : 0;
        if (item.precision == ".*") {
            precision = integerAt(c, next++);
            precise = precision >= 0;
            precision = std::max(precision, 0LL);
        }
        const bool sized = item.size == "h" || item.size == "l";
        long long length = 0;
        if (!sized && isOneOf(item.conversion, "scC")) {
            length = 2;
            if (item.conversion == "s") {
                // The 's' behind "%F" finds a number, which is not read as a text.
                const bool isText = next < kArguments && c.kinds[next] == Kind::text;
                const char* const text = isText ? c.texts[next] : nullptr;
                length = text == nullptr ? 6 : static_cast<long long>(std::string(text).size());
                length = std::max(length, 1LL);
            }
            length = std::max(length, width);
            if (precise) length = std::min(length, precision);
        } else if (isOneOf(item.conversion, "dioquxXp")) {
            length = std::max(32LL, width + precision);
        } else if (isOneOf(item.conversion, "efgG")) {
            length = std::max(128LL, width + precision);
        }
        total += length;
        at += item.length;
    }
    return static_cast<std::size_t>(total);
}

// The formats are this test's own.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void check(const Case* checked, ...) {
    const Case& c = *checked;
    std::string whole(4096, '\0');
    va_list args;
    va_start(args, checked);
    const int written = vsnprintf(whole.data(), whole.size(), c.format.c_str(), args);
    va_end(args);
    ASSERT_GE(written, 0);
    ASSERT_LT(written, 4096);
    whole.resize(static_cast<std::size_t>(written));

    const std::size_t estimate = referenceEstimate(c);
    whole.resize(std::min(whole.size(), estimate));
    if (const std::size_t nul = whole.find('\0'); nul != std::string::npos) whole.resize(nul);

    CString s;
    va_start(args, checked);
    s.FormatV(c.format.c_str(), args);
    va_end(args);
    ASSERT_EQ(textOf(s), whole) << "format: " << c.format;
    ASSERT_EQ(static_cast<std::size_t>(s.GetAllocLength()), estimate) << "format: " << c.format;
}

// Calls check() with each argument in the type of its kind.
template <typename... Args>
void checkTyped(const Case& c, Args... args) {
    if constexpr (constexpr std::size_t at = sizeof...(Args); at == kArguments) {
        check(&c, args...);
    } else {
        switch (c.kinds[at]) {
            case Kind::longLong:
                return checkTyped(c, args..., c.longs[at]);
            case Kind::text:
                return checkTyped(c, args..., c.texts[at]);
            case Kind::number:
                return checkTyped(c, args..., c.numbers[at]);
            default:
                return checkTyped(c, args..., c.integers[at]);
        }
    }
}

// One of `options`.
template <std::size_t Count>
const char* oneOf(Choices& choices, const char* const (&options)[Count]) {
    return options[choices.below(Count)];
}

// No digits: behind "%F%%" the estimate takes them for a width, and many for gigabytes.
Sample literal(Choices& choices) {
    std::string text;
    for (std::size_t length = choices.below(8); length > 0; --length) {
        const char c = static_cast<char>(choices.below(255) + 1);
        if (!isOneOf({c}, "%0123456789")) text += c;
    }
    return {text, {}};
}

// A conversion put together from all that may stand in one.
Sample conversion(Choices& choices) {
    Sample sample{"%", {}};
    sample.text += oneOf(choices, {"", "", "-", "+", " ", "0", "#", "-+", "#0", "- 0#"});
    const auto takeNumber = [&](const char* text) {
        sample.text += text;
        if (text[0] == '*' || text[0] == '.') {
            if (text[0] == '*' || text[1] == '*') sample.takes.push_back(Kind::integer);
        }
    };
    takeNumber(oneOf(choices, {"", "", "1", "7", "33", "130", "*"}));
    takeNumber(oneOf(choices, {"", "", ".", ".0", ".3", ".40", ".*"}));
    const std::string letter = oneOf(choices, {"d", "i", "o", "u", "x", "X", "c", "s", "p", "e",
                                               "E", "f", "F", "g", "G", "a", "A"});
    if (isOneOf(letter, "diouxX")) {
        const std::string size = oneOf(choices, {"", "", "h", "hh", "l", "ll", "q", "j", "z", "t"});
        sample.text += size;
        const bool isInt = size.empty() || size[0] == 'h';
        sample.takes.push_back(isInt ? Kind::integer : Kind::longLong);
    } else {
        const bool isNumber = isOneOf(letter, "eEfFgGaA");
        if (isNumber) sample.text += oneOf(choices, {"", "", "l"});
        sample.takes.push_back(letter == "c" ? Kind::integer
                               : isNumber    ? Kind::number
                                             : Kind::text);
    }
    sample.text += letter;
    return sample;
}

Sample nextSample(Choices& choices) {
    switch (choices.below(4)) {
        case 0:
            return literal(choices);
        case 1:
            return conversion(choices);
        default:
            return samples()[choices.below(samples().size())];
    }
}

Case nextCase(Choices& choices) {
    static const char* const texts[] = {
        "", "a", "abc", "a longer text of some forty characters", nullptr, "%s%n"};
    Case c;
    std::size_t used = 0;
    for (std::size_t piece = choices.below(5); piece > 0; --piece) {
        const Sample sample = nextSample(choices);
        if (used + sample.takes.size() > kArguments) break;
        if (sample.text[0] == '%') c.firstArgument[c.format.size()] = used;
        c.format += sample.text;
        for (const Kind kind : sample.takes) c.kinds[used++] = kind;
    }
    for (std::size_t i = 0; i < kArguments; ++i) {
        c.integers[i] = static_cast<int>(choices.below(70)) - 10;
        c.longs[i] = static_cast<long long>(choices.number()) * static_cast<int>(choices.number());
        c.texts[i] = texts[choices.below(std::size(texts))];
        c.numbers[i] = static_cast<double>(static_cast<int>(choices.number())) / 1000;
    }
    return c;
}

}  // namespace

void checkFormat(Choices& choices) { checkTyped(nextCase(choices)); }
