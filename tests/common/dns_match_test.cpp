#include <gtest/gtest.h>

#include <string>

#include "UDNSMatch.h"
#include "matcher_expectations.h"

namespace {

const char* const kSet = "UDNSMatch::setPattern()";

TEST(DnsMatch, WithoutAPatternMatchesNothing) { expectNoPattern(UDNSMatch(), {"", "host"}); }

using Row = MatchRow;
class DnsCandidate : public testing::TestWithParam<Row> {};

TEST_P(DnsCandidate, MatchesInWhateverCase) { expectMatch<UDNSMatch>(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    Rows, DnsCandidate,
    testing::Values(Row{"*.example.com", "www.example.com", true},
                    Row{"*.example.com", "WWW.Example.COM", true},
                    Row{"*.Example.Com", "www.example.com", true},
                    Row{"*.EXAMPLE.com", "www.eXaMpLe.com", true},
                    Row{"*.example.com", "example.com", false},
                    Row{"*.example.com", "www.example.com.evil.org", false},
                    Row{"www.example.com", "www.example.com", true},
                    Row{"www.example.com", "www2example.com", false}, Row{"*", "", true},
                    Row{"*", "any host", true}, Row{"*", nullptr, false},
                    // The port is part of the candidate, and not of the pattern's host.
                    Row{"*.example.com", "www.example.com:443", false},
                    Row{"www.example.com:443", "www.example.com", true},
                    Row{"www.example.com:443", "www.example.com:443", false},
                    Row{":www.example.com::a:b:", "www.example.com", true}));

TEST(DnsMatch, NumbersNeverMatch) {
    const UDNSMatch matcher("*");
    EXPECT_TRUE(matcher.match("7"));
    EXPECT_FALSE(matcher.matchAsDWORD(7));
}

class NoDnsPattern : public testing::TestWithParam<const char*> {
  protected:
    static Records refusal() {
        return {raised(kSet, "invalid host part, " + orEmpty(GetParam())), caught(kSet)};
    }
};

TEST_P(NoDnsPattern, IsRefused) {
    expectRefused<UDNSMatch>(GetParam(), refusal(), "UDNSMatch::UDNSMatch()", "*.example.com",
                             "www.example.com");
}

TEST_P(NoDnsPattern, CannotBeNormalized) {
    expectNoNormalForm<UDNSMatch>(GetParam(), refusal(), "UDNSMatch::normalize()");
}

INSTANTIATE_TEST_SUITE_P(Rows, NoDnsPattern,
                         testing::Values("", ":", ":::", " ", "a b", "www.example.com ", "\thost",
                                         "host\n", "a\rb", "a\vb", "a\fb", " :443",
                                         static_cast<const char*>(nullptr)));

TEST(DnsMatch, PatternIsNormalizedToHostInLowerCaseAndPort) {
    expectNormalForms<UDNSMatch>({{"*.Example.COM", "*.example.com"},
                                  {"Host:443", "host:443"},
                                  {":Host::443:", "host:443"},
                                  {"host:HTTP:x", "host:HTTP"},
                                  {"host: 443 ", "host:443"},
                                  {"host: :x", "host"},
                                  {"host:", "host"}});
}

TEST(DnsMatch, TakesItsOwnPatternAgain) {
    UDNSMatch matcher("www.Example.com");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern() + 4), 0);
    EXPECT_STREQ(matcher.getPattern(), "Example.com");
    EXPECT_TRUE(matcher.match("example.com"));
}

TEST(DnsMatch, MegabytesAreTakenOrRefused) {
    const std::string letters(1 << 20, 'A');
    UDNSMatch matcher(("*" + letters).c_str());
    EXPECT_TRUE(matcher.match(("b" + letters).c_str()));
    EXPECT_FALSE(matcher.match((letters + "b").c_str()));
    EXPECT_EQ(matcher.setPattern(std::string(1 << 20, ':').c_str()), -1);
}

}  // namespace
