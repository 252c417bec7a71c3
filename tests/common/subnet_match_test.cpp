#include <gtest/gtest.h>

#include <string>

#include "UIPSubnetMatch.h"
#include "matcher_expectations.h"

namespace {

const char* const kSet = "UIPSubnetMatch::setPattern()";
const char* const kHeader = "/UIPAddress.h";

TEST(SubnetMatch, WithoutAPatternMatchesNothing) { expectNoPattern(UIPSubnetMatch(), {"0.0.0.0"}); }

TEST(SubnetMatch, MatchesEveryAddressOfItsSubnetAndNoOther) {
    const UIPSubnetMatch matcher("10.1.2.0/24");
    for (int octet = 0; octet < 256; ++octet) {
        const std::string number = std::to_string(octet);
        EXPECT_TRUE(matcher.match(("10.1.2." + number).c_str()));
        EXPECT_EQ(matcher.match(("10.1." + number + ".7").c_str()), octet == 2) << octet;
        EXPECT_EQ(matcher.match(("10." + number + ".2.7").c_str()), octet == 1) << octet;
        EXPECT_EQ(matcher.match((number + ".1.2.7").c_str()), octet == 10) << octet;
        EXPECT_TRUE(matcher.matchAsDWORD(0x0a010200u + static_cast<unsigned int>(octet)));
        EXPECT_EQ(matcher.matchAsDWORD(0x0a010007u + (static_cast<unsigned int>(octet) << 8)),
                  octet == 2);
    }
}

TEST(SubnetMatch, KeepsThePatternAsGivenAndMasksItsAddress) {
    for (const char* pattern : {"10.1.2.3/8", "10.0.0.0/255.0.0.0", "10.9.9.9/ 8 "}) {
        const UIPSubnetMatch matcher(pattern);
        EXPECT_STREQ(matcher.getPattern(), pattern);
        EXPECT_EQ(textOf(matcher.toString()), pattern);
        EXPECT_TRUE(matcher.match("10.200.0.1"));
        EXPECT_FALSE(matcher.match("11.1.2.3"));
    }
}

TEST(SubnetMatch, HasAnyPrefixLengthFromNoneToAll) {
    const unsigned int address = 0x5a6b7c8du;
    for (unsigned int length = 0; length <= 32; ++length) {
        const UIPSubnetMatch matcher(("90.107.124.141/" + std::to_string(length)).c_str());
        EXPECT_TRUE(matcher.matchAsDWORD(address));
        for (unsigned int bit = 0; bit < 32; ++bit) {
            EXPECT_EQ(matcher.matchAsDWORD(address ^ 0x80000000u >> bit), bit >= length)
                << length << ' ' << bit;
        }
    }
}

TEST(SubnetMatch, TextThatIsNoAddressDoesNotMatch) {
    const UIPSubnetMatch matcher("0.0.0.0/0");
    EXPECT_TRUE(matcher.match("1.2.3.4"));
    EXPECT_TRUE(matcher.match("300.1.1.1"));
    for (const char* text : {"", " ", "1.2.3", "1.2.3.4.5", "1.2.3.4x", "1.2.3.4/8", "host",
                             "16909060", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(matcher.match(text));
    }
    EXPECT_FALSE(matcher.match(std::string(1 << 20, '1').c_str()));
}

struct Refused {
    const char* pattern;
    const char* function;
    const char* message;
};
class NoSubnetPattern : public testing::TestWithParam<Refused> {};

TEST_P(NoSubnetPattern, IsRefused) {
    const Refused& row = GetParam();
    expectRefused<UIPSubnetMatch>(row.pattern,
                                  {raised(row.function, row.message, kHeader), caught(kSet)},
                                  "UIPSubnetMatch::UIPSubnetMatch()", "10.0.0.0/8", "10.1.2.3");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NoSubnetPattern,
    testing::Values(Refused{"10.1.2.3", "UIPvXSubnet::parse()", "invalid subnet, 10.1.2.3"},
                    Refused{"10.1.2.3/8/9", "UIPvXSubnet::parse()", "invalid subnet, 10.1.2.3/8/9"},
                    Refused{"", "UIPvXSubnet::parse()", "invalid subnet, "},
                    Refused{nullptr, "UIPvXSubnet::parse()", "invalid subnet, "},
                    Refused{"////", "UIPvXSubnet::parse()", "invalid subnet, ////"},
                    Refused{"host/8", "UIPv4Address::parse()", "invalid value, host"},
                    Refused{"1.2.3.4/x", "UIPv4Netmask::parse()", "invalid value, x"},
                    Refused{"1.2.3.4/100", "UIPv4Netmask::parse()", "invalid value, 100"},
                    Refused{"1.2.3.4/33", "UIPv4Netmask::fromCiscoValue()", "invalid value, 33"}));

TEST(SubnetMatch, NegativePrefixIsRefusedWhereItIsNarrowed) {
    expectRefused<UIPSubnetMatch>(
        "1.2.3.4/-8",
        {raised("IntToDWORD()", "IntToDWORD(), input value is negative", "/m_type_conversion.h"),
         caught(kSet)},
        "UIPSubnetMatch::UIPSubnetMatch()", "10.0.0.0/8", "10.1.2.3");
}

TEST(SubnetMatch, TakesItsOwnPatternAgain) {
    UIPSubnetMatch matcher("110.0.0.0/8");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern()), 0);
    EXPECT_TRUE(matcher.match("110.1.1.1"));
    EXPECT_EQ(matcher.setPattern(matcher.getPattern() + 1), 0);
    EXPECT_STREQ(matcher.getPattern(), "10.0.0.0/8");
    EXPECT_TRUE(matcher.match("10.1.1.1"));
    EXPECT_FALSE(matcher.match("110.1.1.1"));
}

TEST(SubnetMatch, FailureIsNotRecordedBelowLevelOne) {
    UIPSubnetMatch matcher;
    const RecordLog log(-1);
    EXPECT_EQ(matcher.setPattern("bad"), -1);
    // Raising is recorded at any level; that it was caught is not.
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              raised("UIPvXSubnet::parse()", "invalid subnet, bad", kHeader));
}

TEST(SubnetMatch, NormalizesByCopying) {
    CString out;
    EXPECT_EQ(UIPSubnetMatch().normalize("10.1.2.3/8", out, ','), 0);
    EXPECT_EQ(textOf(out), "10.1.2.3/8");
}

}  // namespace
