#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "UDWORDMatch.h"
#include "matcher_expectations.h"

namespace {

const char* const kSet = "UDWORDMatch::setPattern()";

TEST(NumberMatch, WithoutAPatternMatchesNothing) { expectNoPattern(UDWORDMatch(), {"0"}); }

TEST(NumberMatch, OfANumberMatchesThatAlone) {
    const UDWORDMatch matcher("80");
    EXPECT_STREQ(matcher.getPattern(), "80");
    EXPECT_EQ(textOf(matcher.toString()), "80");
    for (unsigned int n = 0; n < 1000; ++n) {
        EXPECT_EQ(matcher.matchAsDWORD(n), n == 80) << n;
        EXPECT_EQ(matcher.match(std::to_string(n).c_str()), n == 80) << n;
    }
}

TEST(NumberMatch, OfARangeMatchesBothItsEndsAndAllBetween) {
    const UDWORDMatch matcher("1000-2000");
    EXPECT_STREQ(matcher.getPattern(), "1000-2000");
    for (unsigned int n = 0; n < 3000; ++n) {
        EXPECT_EQ(matcher.matchAsDWORD(n), n >= 1000 && n <= 2000) << n;
        EXPECT_EQ(matcher.match(std::to_string(n).c_str()), n >= 1000 && n <= 2000) << n;
    }
    EXPECT_TRUE(UDWORDMatch("7-7").matchAsDWORD(7));
}

TEST(NumberMatch, TakesWhiteSpaceAroundNumbers) {
    const UDWORDMatch matcher(" 10 - 20 ");
    EXPECT_STREQ(matcher.getPattern(), " 10 - 20 ");
    EXPECT_TRUE(matcher.match(" 15\n"));
    EXPECT_TRUE(matcher.matchAsDWORD(20));
    EXPECT_TRUE(UDWORDMatch("007").matchAsDWORD(7));
}

struct Candidate {
    const char* text;
    bool isMatch;
};
class NumberCandidate : public testing::TestWithParam<Candidate> {};

TEST_P(NumberCandidate, IsReadAsANumberOrMatchesNothing) {
    EXPECT_EQ(UDWORDMatch("0-80").match(GetParam().text), GetParam().isMatch);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NumberCandidate,
    testing::Values(Candidate{"80", true}, Candidate{"081", false}, Candidate{" 80 ", true},
                    Candidate{"0", true}, Candidate{"80x", false}, Candidate{"x80", false},
                    Candidate{"8 0", false}, Candidate{"", false}, Candidate{" ", false},
                    Candidate{"+80", false}, Candidate{"0x10", false}, Candidate{"8.0", false},
                    // What isNumber lets through is read up to the first "-".
                    Candidate{"80-90", true}, Candidate{"-", true}, Candidate{"--5", true},
                    // Unsigned, -80 is 4294967216.
                    Candidate{"-80", false}, Candidate{"4294967376", false},
                    Candidate{"99999999999999999999999999", false},
                    Candidate{"-99999999999999999999999999", false}, Candidate{nullptr, false}));

TEST(NumberMatch, ReachesOverAll32Bits) {
    const UDWORDMatch upper("2147483648-4294967295");
    EXPECT_TRUE(upper.match("2147483648"));
    EXPECT_TRUE(upper.match("4294967295"));
    EXPECT_FALSE(upper.match("2147483647"));
    EXPECT_FALSE(upper.match("4294967296"));
    EXPECT_TRUE(upper.matchAsDWORD(UINT_MAX));
    EXPECT_TRUE(upper.matchAsDWORD(2147483648u));
    EXPECT_FALSE(upper.matchAsDWORD(2147483647u));
    EXPECT_TRUE(upper.match("-1"));
    EXPECT_TRUE(upper.match("-2147483648"));
    EXPECT_FALSE(upper.match("-2147483649"));
    const UDWORDMatch all("0-4294967295");
    EXPECT_TRUE(all.matchAsDWORD(0));
    EXPECT_TRUE(all.matchAsDWORD(UINT_MAX));
}

class NoNumberPattern : public testing::TestWithParam<const char*> {};

TEST_P(NoNumberPattern, IsRefused) {
    const char* const pattern = GetParam();
    expectRefused<UDWORDMatch>(pattern,
                               {raised(kSet, "invalid pattern, " + orEmpty(pattern)), caught(kSet)},
                               "UDWORDMatch::UDWORDMatch()", "80-90", "85");
}

INSTANTIATE_TEST_SUITE_P(Rows, NoNumberPattern,
                         testing::Values("2000-1000", "-5", "5-", "1-2-3", "", " ", "-", "--",
                                         "---", "--5", "5--", "-5-", " -5", "5- ", " - ", "a",
                                         "1-b", "a-2", "1 2", "+5", "0x10", "1-+2", "4294967296",
                                         "1-4294967296", "99999999999999999999999",
                                         static_cast<const char*>(nullptr)));

TEST(NumberMatch, RefusesNumbersOutsideItsBounds) {
    UDWORDMatch matcher;
    matcher.setMax(65535);
    EXPECT_EQ(matcher.setPattern("65535"), 0);
    const Records refusal{raised(kSet, "invalid pattern, 70000"), caught(kSet)};
    EXPECT_EQ(recordsOf([&] { EXPECT_EQ(matcher.setPattern("70000"), -1); }), refusal);
    EXPECT_FALSE(matcher.matchAsDWORD(65535));
    EXPECT_EQ(matcher.setPattern("1-65536"), -1);
    matcher.setMin(1024);
    EXPECT_EQ(matcher.setPattern("1023"), -1);
    EXPECT_EQ(matcher.setPattern("1023-2000"), -1);
    EXPECT_EQ(matcher.setPattern("1024-65535"), 0);
    EXPECT_EQ(matcher.setPattern("1024"), 0);
}

TEST(NumberMatch, BoundsCountForLaterPatternsAlone) {
    UDWORDMatch matcher("70000");
    matcher.setMax(65535);
    EXPECT_TRUE(matcher.matchAsDWORD(70000));
    matcher.setMin(10);
    matcher.setMax(5);
    EXPECT_EQ(matcher.setPattern("7"), -1);
}

TEST(NumberMatch, TakesItsOwnPatternAgainInWholeOrInPart) {
    UDWORDMatch matcher("10-20");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern()), 0);
    EXPECT_STREQ(matcher.getPattern(), "10-20");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern() + 3), 0);
    EXPECT_STREQ(matcher.getPattern(), "20");
    EXPECT_FALSE(matcher.matchAsDWORD(10));
}

TEST(NumberMatch, MegabytesAreRefusedOrRead) {
    const std::string zeros(1 << 20, '0');
    EXPECT_TRUE(UDWORDMatch((zeros + "7").c_str()).match((zeros + "7").c_str()));
    UDWORDMatch matcher;
    EXPECT_EQ(matcher.setPattern((zeros + "x").c_str()), -1);
    EXPECT_EQ(matcher.setPattern(std::string(10000, '-').c_str()), -1);
}

TEST(NumberMatch, NormalizesByCopying) {
    CString out;
    EXPECT_EQ(UDWORDMatch().normalize("no number", out, ','), 0);
    EXPECT_EQ(textOf(out), "no number");
}

}  // namespace
