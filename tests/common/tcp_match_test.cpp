#include <gtest/gtest.h>

#include <string>

#include "UTCPMatch.h"
#include "matcher_expectations.h"

namespace {

const char* const kSet = "UTCPMatch::setPattern()";

TEST(TcpMatch, WithoutAPatternMatchesNothing) { expectNoPattern(UTCPMatch(), {"0.0.0.0:0"}); }

using Row = MatchRow;
class TcpCandidate : public testing::TestWithParam<Row> {};

TEST_P(TcpCandidate, MatchesOrNot) { expectMatch<UTCPMatch>(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    NetworkAndPort, TcpCandidate,
    testing::Values(
        Row{"10.0.0.0/8:80", "10.1.2.3:80", true}, Row{"10.0.0.0/8:80", "10.1.2.3:81", false},
        Row{"10.0.0.0/8:80", "11.1.2.3:80", false}, Row{"10.0.0.0/8:80", "10.1.2.3", false},
        Row{"10.0.0.0/8:80", "10.1.2.3:", false}, Row{"10.0.0.0/8:80", ":80", false},
        Row{"10.0.0.0/8:80", "80", false}, Row{"10.0.0.0/8:80", "", false},
        Row{"10.0.0.0/8:80", "10.1.2.3:80:80", false}, Row{"10.0.0.0/8:80", "10.1.2.3:http", false},
        Row{"10.0.0.0/8:80", "host:80", false}, Row{"10.0.0.0/8:80", ":10.1.2.3::80:", true},
        Row{"10.0.0.0/8:80", nullptr, false}, Row{"10.0.0.0/8:80", "10.1.2.3:4294967376", false},
        Row{"10.0.0.0/8: 80 ", "10.1.2.3:80", true},
        Row{"10.0.0.0/8:1000-2000", "10.1.2.3:1000", true},
        Row{"10.0.0.0/8:1000-2000", "10.1.2.3:2000", true},
        Row{"10.0.0.0/8:1000-2000", "10.1.2.3:2001", false},
        Row{"10.0.0.0/255.0.0.0:65535", "10.1.2.3:65535", true},
        Row{":10.0.0.0/8::80:", "10.1.2.3:80", true}));

INSTANTIATE_TEST_SUITE_P(NetworkAlone, TcpCandidate,
                         testing::Values(Row{"10.0.0.0/8", "10.1.2.3:80", true},
                                         Row{"10.0.0.0/8", "10.1.2.3:http", true},
                                         Row{"10.0.0.0/8", "10.1.2.3:99999", true},
                                         Row{"10.0.0.0/8", "11.1.2.3:80", false},
                                         Row{"10.0.0.0/8", "10.1.2.3", false},
                                         Row{"10.0.0.0/8", "10.1.2.3:80:81", false},
                                         Row{"0.0.0.0/0", "x:80", false}));

TEST(TcpMatch, NumbersNeverMatch) {
    const UTCPMatch matcher("0.0.0.0/0");
    EXPECT_TRUE(matcher.match("1.2.3.4:80"));
    EXPECT_FALSE(matcher.matchAsDWORD(0x01020304));
    EXPECT_FALSE(matcher.matchAsDWORD(80));
}

struct Refused {
    const char* rule;
    const char* pattern;
    Records records;
};
class NoTcpPattern : public testing::TestWithParam<Refused> {
  protected:
    static Records refusal() {
        Records records = GetParam().records;
        records.push_back(caught(kSet));
        return records;
    }
};

TEST_P(NoTcpPattern, IsRefused) {
    expectRefused<UTCPMatch>(GetParam().pattern, refusal(), "UTCPMatch::UTCPMatch()",
                             "10.0.0.0/8:80", "10.0.0.1:80");
}

TEST_P(NoTcpPattern, CannotBeNormalized) {
    expectNoNormalForm<UTCPMatch>(GetParam().pattern, refusal(), "UTCPMatch::normalize()");
}

Records noSubnet(const std::string& text) {
    return {raised("UIPvXSubnet::parse()", "invalid subnet, " + text, "/UIPAddress.h")};
}

Records noPort(const std::string& pattern, const std::string& port) {
    return {raised("UDWORDMatch::setPattern()", "invalid pattern, " + port),
            caught("UDWORDMatch::setPattern()"), raised(kSet, "invalid port part, " + pattern)};
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NoTcpPattern,
    testing::Values(
        Refused{"Nothing", "", noSubnet("")}, Refused{"Null", nullptr, noSubnet("")},
        Refused{"Colons", "::::", noSubnet("")},
        Refused{"NoNetmask", "10.0.0.0:80", noSubnet("10.0.0.0")},
        Refused{"PortAlone", ":80", noSubnet("80")},
        Refused{"ThreeParts",
                "10.0.0.0/8:80:81",
                {raised("UTCPMatch::parse()", "invalid pattern, 10.0.0.0/8:80:81")}},
        Refused{
            "ColonWithoutPort", "10.0.0.0/8:", {raised(kSet, "missing port part, 10.0.0.0/8:")}},
        Refused{"ColonInFront", ":10.0.0.0/8", {raised(kSet, "missing port part, :10.0.0.0/8")}},
        Refused{"BlankPort", "10.0.0.0/8: ", noPort("10.0.0.0/8: ", " ")},
        Refused{"NamedPort", "10.0.0.0/8:http", noPort("10.0.0.0/8:http", "http")},
        Refused{"LargePort", "10.0.0.0/8:65536", noPort("10.0.0.0/8:65536", "65536")},
        Refused{"RangeBackwards", "10.0.0.0/8:2-1", noPort("10.0.0.0/8:2-1", "2-1")}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST(TcpMatch, EachFailureNamesItsOwnLine) {
    const RecordLog log;
    UTCPMatch matcher;
    EXPECT_EQ(matcher.setPattern("10.0.0.0/8:"), -1);
    EXPECT_EQ(matcher.setPattern("10.0.0.0/8:x"), -1);
    const std::string missing = lineOf(log.items(), "missing port part");
    const std::string invalid = lineOf(log.items(), "invalid port part");
    EXPECT_NE(missing, "");
    EXPECT_NE(invalid, "");
    EXPECT_NE(missing, invalid);
}

TEST(TcpMatch, PatternIsSplitIntoAddressNetmaskAndPort) {
    CString address, netmask, port("old");
    UTCPMatch::parse("10.1.2.3/8:80-90", address, netmask, port);
    EXPECT_EQ(textOf(address), "10.1.2.3");
    EXPECT_EQ(textOf(netmask), "255.0.0.0");
    EXPECT_EQ(textOf(port), "80-90");
    UTCPMatch::parse("192.168.1.0/255.255.255.0", address, netmask, port);
    EXPECT_EQ(textOf(address), "192.168.1.0");
    EXPECT_EQ(textOf(netmask), "255.255.255.0");
    EXPECT_EQ(textOf(port), "");
    UTCPMatch::parse("1.2.3.4/32:any port", address, netmask, port);
    EXPECT_EQ(textOf(port), "any port");
}

TEST(TcpMatch, PatternThatCannotBeSplitLeavesThePartsAlone) {
    CString address("a"), netmask("b"), port("c");
    for (const char* pattern : {"10.0.0.0/8:80:81", "10.0.0.0:80", "", "10.0.0.0/33:80"}) {
        EXPECT_THROW(UTCPMatch::parse(pattern, address, netmask, port), UException) << pattern;
    }
    EXPECT_EQ(textOf(address + netmask + port), "abc");
}

TEST(TcpMatch, PatternIsNormalizedToDottedNetworkAndPort) {
    expectNormalForms<UTCPMatch>({{"10.1.2.3/8:80", "10.1.2.3/255.0.0.0:80"},
                                  {"10.0.0.0/255.0.0.0:1-2", "10.0.0.0/255.0.0.0:1-2"},
                                  {"010.000.0.0/ 8: 80 ", "10.0.0.0/255.0.0.0:80"},
                                  {":10.0.0.0/8/::80:", "10.0.0.0/255.0.0.0:80"},
                                  {"1.2.3.4/0", "1.2.3.4/0.0.0.0"},
                                  {"1.2.3.4/32", "1.2.3.4/255.255.255.255"}});
}

TEST(TcpMatch, TakesItsOwnPatternAgain) {
    UTCPMatch matcher("110.0.0.0/8:80");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern() + 1), 0);
    EXPECT_STREQ(matcher.getPattern(), "10.0.0.0/8:80");
    EXPECT_TRUE(matcher.match("10.0.0.1:80"));
}

TEST(TcpMatch, ForgetsThePortOfThePatternBefore) {
    UTCPMatch matcher("10.0.0.0/8:80");
    EXPECT_EQ(matcher.setPattern("10.0.0.0/8"), 0);
    EXPECT_TRUE(matcher.match("10.0.0.1:81"));
}

TEST(TcpMatch, MegabytesAreRefused) {
    UTCPMatch matcher;
    const std::string digits(1 << 20, '1');
    EXPECT_EQ(matcher.setPattern(digits.c_str()), -1);
    EXPECT_EQ(matcher.setPattern(("10.0.0.0/8:" + digits).c_str()), -1);
    EXPECT_EQ(matcher.setPattern(std::string(1 << 20, ':').c_str()), -1);
    EXPECT_EQ(matcher.setPattern("10.0.0.0/8"), 0);
    EXPECT_TRUE(matcher.match(("10.0.0.1:" + digits).c_str()));
    EXPECT_FALSE(matcher.match((digits + ":80").c_str()));
}

}  // namespace
