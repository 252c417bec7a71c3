// Expressions of every kind of matcher: what is printed is read again as the same, matches and hits
// are those of the parts, and numbers, ranges and subnets match as arithmetic says.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "UExpressionMatch.h"
#include "UTCPMatch.h"
#include "fuzz_input.h"

namespace {

std::string dotted(unsigned int address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & 255) + (shift > 0 ? "." : "");
    }
    return text;
}

// Whether any of the printed patterns matches, each asked as a matcher of its own.
template <typename Matches>
int countHits(const UExpressionMatch& expression, unsigned int type, char delimiter,
              Matches matches) {
    UStrings patterns(expression.getExpression(), delimiter, 0);
    int hits = 0;
    for (int i = 0; i < patterns.getCount(); ++i) {
        const std::unique_ptr<URootMatch> one(
            UExpressionMatch::createMatchObject(type, patterns.getItem(i)));
        hits += matches(*one) ? 1 : 0;
    }
    return hits;
}

void checkAnyExpression(FuzzInput& input) {
    const auto type = static_cast<unsigned int>(input.below(6));
    const char delimiter = input.flag() ? ',' : static_cast<char>(1 + input.below(127));
    const std::string text = input.line();
    const std::string candidate = input.line();
    const unsigned int number = input.number();

    UExpressionMatch expression;
    if (expression.setExpression(text.c_str(), type, delimiter) != 0) {
        EXPECT_STREQ(expression.getExpression(), "");
        EXPECT_FALSE(expression.match(candidate.c_str()));
        EXPECT_FALSE(expression.matchAsDWORD(number));
        return;
    }
    UExpressionMatch again;
    ASSERT_EQ(again.setExpression(expression.getExpression(), type, delimiter), 0);
    EXPECT_EQ(again.toString(), expression.toString());
    // Parts of blanks alone are gone the second time, and with them the last difference.
    UExpressionMatch last;
    ASSERT_EQ(last.setExpression(again.getExpression(), type, delimiter), 0);
    EXPECT_STREQ(last.getExpression(), again.getExpression());

    const auto byText = [&](const URootMatch& one) { return one.match(candidate.c_str()); };
    const int textHits = countHits(expression, type, delimiter, byText);
    UStrings hits;
    EXPECT_EQ(expression.match(candidate.c_str(), hits), textHits > 0);
    EXPECT_EQ(hits.getCount(), textHits);
    EXPECT_EQ(expression.match(candidate.c_str()), textHits > 0);
    EXPECT_EQ(again.match(candidate.c_str()), textHits > 0);

    const auto byNumber = [&](const URootMatch& one) { return one.matchAsDWORD(number); };
    const int numberHits = countHits(expression, type, delimiter, byNumber);
    EXPECT_EQ(expression.matchAsDWORD(number, hits), numberHits > 0);
    EXPECT_EQ(hits.getCount(), numberHits);
    EXPECT_EQ(expression.matchAsDWORD(number), numberHits > 0);
}

// An endpoint's pattern made of numbers.
void checkArithmetic(FuzzInput& input) {
    const unsigned int address = input.number();
    const auto length = static_cast<unsigned int>(input.below(33));
    const auto low = static_cast<unsigned int>(input.below(65536));
    const unsigned int high = low + static_cast<unsigned int>(input.below(65536 - low));
    const unsigned int other = input.flag() ? input.number() : address ^ 1u << input.below(32);
    const auto port = static_cast<unsigned int>(input.below(65536));

    const std::string network = dotted(address) + "/" + std::to_string(length);
    const std::string range = std::to_string(low) + "-" + std::to_string(high);
    const bool isInside = length == 0 || (address ^ other) >> (32 - length) == 0;
    const bool isOpen = low <= port && port <= high;
    const std::string candidate = dotted(other) + ":" + std::to_string(port);
    const UTCPMatch matcher((network + ":" + range).c_str());
    EXPECT_EQ(matcher.match(candidate.c_str()), isInside && isOpen);
    EXPECT_EQ(UTCPMatch(network.c_str()).match(candidate.c_str()), isInside);
    EXPECT_EQ(UIPSubnetMatch(network.c_str()).matchAsDWORD(other), isInside);
    EXPECT_EQ(UDWORDMatch(range.c_str()).matchAsDWORD(port), isOpen);

    CString normal;
    ASSERT_EQ(matcher.normalize(matcher.getPattern(), normal, ','), 0);
    EXPECT_EQ(UTCPMatch(normal).match(candidate.c_str()), isInside && isOpen);
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    checkArithmetic(input);
    checkAnyExpression(input);
}
