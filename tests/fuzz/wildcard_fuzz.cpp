// A pattern with asterisks and a text: they match when any way of reading the asterisks makes them,
// and long texts that nearly match do not take longer for it than the fuzzer waits.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "StringHelper.h"
#include "UPatternMatch.h"
#include "fuzz_input.h"

namespace {

// All ways at once: after each character of the pattern, which beginnings of the text match so far.
bool matchesInSomeWay(const std::string& pattern, const std::string& text) {
    std::vector<bool> reached(text.size() + 1, false);
    reached[0] = true;
    for (const char c : pattern) {
        std::vector<bool> next(text.size() + 1, false);
        for (std::size_t n = 0; n <= text.size(); ++n) {
            if (c == '*') {
                next[n] = reached[n] || (n > 0 && next[n - 1]);
            } else {
                next[n] = n > 0 && reached[n - 1] && text[n - 1] == c;
            }
        }
        reached = next;
    }
    return reached[text.size()];
}

bool matches(const std::string& pattern, const std::string& text) {
    UStrings parts;
    StringHelper::prepareFilter(pattern.c_str(), parts);
    const bool result = StringHelper::match(text.c_str(), parts);
    EXPECT_EQ(UPatternMatch(pattern.c_str()).match(text.c_str()), result);
    return result;
}

std::string repeated(const std::string& text, std::size_t length) {
    std::string result;
    while (!text.empty() && result.size() < length) result += text;
    return result;
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    constexpr std::size_t kMost = 300;
    const std::string pattern = input.line().substr(0, kMost);
    const std::string text = input.line().substr(0, kMost);
    EXPECT_EQ(matches(pattern, text), matchesInSomeWay(pattern, text));
    EXPECT_TRUE(matches("*" + pattern + "*", "a" + pattern + "b"));
    if (input.flag()) matches(repeated(pattern, 1000), repeated(text, 20000));
}
