#include "FormatEstimate.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <optional>

#include "PrintfArguments.h"

namespace {

constexpr std::int64_t kNullTextLength = 6;  // "(null)"

// The digits at `at`, stepped over; a number beyond int counts as the greatest int.
std::int64_t takeDigits(const char*& at) {
    std::int64_t number = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
        number = std::min(number * 10 + (*at - '0'), std::int64_t{INT_MAX});
    return number;
}

// One conversion as the estimate reads it.
struct Item {
    std::int64_t extra = 0;
    std::int64_t width = 0;
    std::optional<std::int64_t> precision;
    bool sized = false;
    char conversion = '\0';
};

void takeFlags(const char*& at, int widthArgument, Item& item) {
    bool starred = false;
    for (;; ++at) {
        if (*at == '#') {
            item.extra += 2;
        } else if (*at == '*') {
            starred = true;
            item.width = widthArgument;
        } else if (*at == '\0' || strchr("-+0 ", *at) == nullptr) {
            break;
        }
    }
    if (!starred) item.width = takeDigits(at);
}

void takePrecision(const char*& at, int precisionArgument, Item& item) {
    if (*at != '.') return;
    ++at;
    if (*at != '*') {
        item.precision = takeDigits(at);
        return;
    }
    ++at;
    // As for printf, a negative one is as if there were none.
    if (precisionArgument >= 0) item.precision = precisionArgument;
}

void takeSize(const char*& at, Item& item) {
    if (*at == 'h' || *at == 'l') {
        item.sized = true;
        ++at;
    } else if (*at == 'F' || *at == 'L' || *at == 'N') {
        ++at;
    }
}

// A text or character is as long as it is, within its width and precision.
std::int64_t withinLimits(std::int64_t length, const Item& item) {
    length = std::max(length, item.width);
    return item.precision ? std::min(length, *item.precision) : length;
}

std::int64_t textLength(const char* text, const Item& item) {
    if (text == nullptr) return withinLimits(kNullTextLength, item);
    // A precision is also the promise that nothing behind it is read.
    const std::size_t length =
        item.precision ? strnlen(text, static_cast<std::size_t>(*item.precision)) : strlen(text);
    return withinLimits(std::max(static_cast<std::int64_t>(length), std::int64_t{1}), item);
}

std::int64_t itemLength(const Item& item, const char* text) {
    const std::int64_t wanted = item.width + item.precision.value_or(0);
    switch (item.conversion) {
        case 'c':
        case 'C':
            return item.sized ? 0 : withinLimits(2, item);
        case 's':
            return item.sized ? 0 : textLength(text, item);
        case 'd':
        case 'i':
        case 'o':
        case 'q':
        case 'u':
        case 'x':
        case 'X':
        case 'p':
            return std::max(std::int64_t{32}, wanted);
        case 'e':
        case 'f':
        case 'g':
        case 'G':
            return std::max(std::int64_t{128}, wanted);
        default:
            return 0;
    }
}

}  // namespace

std::size_t EstimateFormat(const char* format, PrintfArguments& args) {
    std::int64_t total = 0;
    for (const char* at = format; *at != '\0';) {
        if (*at != '%') {
            ++total;
            ++at;
            continue;
        }
        if (at[1] == '%') {
            ++total;
            at += 2;
            continue;
        }
        const PrintfArguments::Conversion taken = args.At(at++);
        Item item;
        takeFlags(at, taken.width, item);
        takePrecision(at, taken.precision, item);
        takeSize(at, item);
        item.conversion = *at;
        total += item.extra + itemLength(item, taken.text);
        if (*at != '\0') ++at;
    }
    return static_cast<std::size_t>(total);
}
