// Random patterns and candidates beside arithmetic, and patterns that are printed and read again.

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "NumberText.h"
#include "UDWORDMatch.h"
#include "UExpressionMatch.h"
#include "UIPSubnetMatch.h"
#include "UTCPMatch.h"
#include "random_seed.h"
#include "text_of.h"

namespace {

class MatcherModel : public testing::Test {
  protected:
    unsigned int below(unsigned int end) { return static_cast<unsigned int>(m_random() % end); }
    unsigned int any() { return static_cast<unsigned int>(m_random()); }

    static std::string dotted(unsigned int address) {
        std::string text;
        for (int shift = 24; shift >= 0; shift -= 8) {
            text += std::to_string(address >> shift & 255);
            if (shift > 0) text += '.';
        }
        return text;
    }

    // A number near `value`, or anywhere.
    unsigned int near(unsigned int value) { return below(4) == 0 ? any() : value + below(5) - 2; }

  private:
    std::mt19937 m_random{randomSeed()};
};

TEST_F(MatcherModel, RangesAreIntervals) {
    for (int i = 0; i < randomRounds(100000); ++i) {
        const unsigned int low = any() >> below(32);
        const unsigned int high = below(2) == 0 ? low + below(10) : any();
        UDWORDMatch matcher;
        const std::string pattern = std::to_string(low) + "-" + std::to_string(high);
        ASSERT_EQ(matcher.setPattern(pattern.c_str()), low <= high ? 0 : -1) << pattern;
        for (const unsigned int value : {near(low), near(high)}) {
            const bool expected = low <= value && value <= high;
            ASSERT_EQ(matcher.matchAsDWORD(value), expected) << pattern << ' ' << value;
            ASSERT_EQ(matcher.match(std::to_string(value).c_str()), expected) << pattern;
        }
    }
}

TEST_F(MatcherModel, SubnetsAreEqualLeadingBits) {
    for (int i = 0; i < randomRounds(100000); ++i) {
        const unsigned int address = any();
        const unsigned int length = below(33);
        const unsigned int other = below(4) == 0 ? any() : address ^ 1u << below(32);
        const bool expected = length == 0 || (address ^ other) >> (32 - length) == 0;
        const std::string pattern = dotted(address) + "/" + std::to_string(length);
        const UIPSubnetMatch matcher(pattern.c_str());
        ASSERT_EQ(matcher.matchAsDWORD(other), expected) << pattern << ' ' << other;
        ASSERT_EQ(matcher.match(dotted(other).c_str()), expected) << pattern << ' ' << other;
    }
}

TEST_F(MatcherModel, EndpointsAreASubnetAndARange) {
    for (int i = 0; i < randomRounds(30000); ++i) {
        const unsigned int address = any();
        const unsigned int length = below(33);
        const unsigned int low = below(65536);
        const unsigned int high = low + below(65536 - low);
        const unsigned int other = address ^ 1u << below(32);
        const unsigned int port = near(low);
        const bool expected =
            (length == 0 || (address ^ other) >> (32 - length) == 0) && low <= port && port <= high;
        const std::string pattern = dotted(address) + "/" + std::to_string(length) + ":" +
                                    std::to_string(low) + "-" + std::to_string(high);
        const std::string text = dotted(other) + ":" + std::to_string(port);
        UTCPMatch matcher(pattern.c_str());
        ASSERT_EQ(matcher.match(text.c_str()), expected) << pattern << ' ' << text;
        CString normal, again;
        ASSERT_EQ(matcher.normalize(pattern.c_str(), normal, ','), 0);
        ASSERT_EQ(matcher.normalize(normal, again, ','), 0);
        ASSERT_EQ(textOf(normal), textOf(again));
        ASSERT_EQ(matcher.setPattern(normal), 0);
        ASSERT_EQ(matcher.match(text.c_str()), expected) << textOf(normal) << ' ' << text;
    }
}

// Rubbish of the characters that patterns are made of: an expression that can be set is the same
// when it is set again from what it printed, and one that cannot be set matches nothing.
TEST_F(MatcherModel, ExpressionsThatArePrintedAreReadAsTheSame) {
    const std::string letters = "0123./:-*, aB";
    int set = 0;
    for (int i = 0; i < randomRounds(100000); ++i) {
        const unsigned int type = below(5);
        std::string text;
        for (unsigned int n = below(12); n > 0; --n) {
            text += below(8) == 0 ? "10.1.2.3/8" : letters.substr(below(13), 1);
        }
        UExpressionMatch expression;
        if (expression.setExpression(text.c_str(), type, ',') != 0) {
            ASSERT_STREQ(expression.getExpression(), "") << text;
            ASSERT_EQ(textOf(expression.toString()), "") << text;
            continue;
        }
        ++set;
        UExpressionMatch again;
        ASSERT_EQ(again.setExpression(expression.getExpression(), type, ','), 0) << text;
        ASSERT_EQ(textOf(again.toString()), textOf(expression.toString())) << text;
    }
    EXPECT_GT(set, randomRounds(100000) / 5);
}

// What the hand-written reader of addresses makes of a text, and what the stated format does.
TEST_F(MatcherModel, AddressesAreReadByTheStatedFormat) {
    const std::string letters = "0123456789..... +-x\t";
    for (int i = 0; i < randomRounds(300000); ++i) {
        std::string text = below(2) == 0 ? "" : dotted(any());
        for (unsigned int n = below(4); n > 0; --n) {
            text.insert(below(static_cast<unsigned int>(text.size()) + 1), 1,
                        letters[below(static_cast<unsigned int>(letters.size()))]);
        }
        unsigned int part[4] = {};
        char rest[10];
        const bool expected = sscanf(text.c_str(), "%3u.%3u.%3u.%3u%9s", &part[0], &part[1],
                                     &part[2], &part[3], rest) == 4;
        const unsigned int value =
            (part[0] << 24) + ((part[1] & 255) << 16) + ((part[2] & 255) << 8) + (part[3] & 255);
        bool ok = !expected;
        ASSERT_EQ(strIPtoDWORD(text.c_str(), 7, &ok), expected ? value : 7) << '"' << text << '"';
        ASSERT_EQ(ok, expected) << '"' << text << '"';
    }
}

}  // namespace
