#include "UExpressionMatch.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "UDNSMatch.h"
#include "UDWORDMatch.h"
#include "UException.h"
#include "UIPSubnetMatch.h"
#include "UPatternMatch.h"
#include "UTCPMatch.h"
#include "matcher_records.h"
#include "text_of.h"

namespace {

using testing::ElementsAre;
using Type = UExpressionMatch;

const char* const kSet = "UExpressionMatch::setExpression()";
const char* const kCreate = "UExpressionMatch::createMatchObject()";

std::vector<std::string> itemsOf(const UStrings& strings) {
    std::vector<std::string> items;
    for (int i = 0; i < strings.getCount(); ++i) items.emplace_back(strings.getItem(i));
    return items;
}

std::vector<std::string> hitsOf(const UExpressionMatch& expression, const char* text) {
    UStrings hits("old", ',', 0);
    EXPECT_EQ(expression.match(text, hits), expression.match(text));
    EXPECT_EQ(hits.getCount() > 0, expression.match(text));
    return itemsOf(hits);
}

std::vector<std::string> hitsOf(const UExpressionMatch& expression, unsigned int value) {
    UStrings hits("old", ',', 0);
    EXPECT_EQ(expression.matchAsDWORD(value, hits), expression.matchAsDWORD(value));
    EXPECT_EQ(hits.getCount() > 0, expression.matchAsDWORD(value));
    return itemsOf(hits);
}

void expectWithoutExpression(const UExpressionMatch& expression) {
    EXPECT_STREQ(expression.getExpression(), "");
    EXPECT_EQ(textOf(expression.toString()), "");
    for (const char* text : {"", "a", "1", "10.0.0.1", static_cast<const char*>(nullptr)}) {
        EXPECT_THAT(hitsOf(expression, text), ElementsAre());
    }
    EXPECT_THAT(hitsOf(expression, 1u), ElementsAre());
}

TEST(ExpressionMatch, WithoutAnExpressionMatchesNothing) {
    expectWithoutExpression(UExpressionMatch());
}

TEST(ExpressionMatch, HoldsOneMatcherForEachPiece) {
    UExpressionMatch expression;
    EXPECT_EQ(expression.setExpression("a, b ,c", Type::kPattern, ','), 0);
    EXPECT_STREQ(expression.getExpression(), "a,b,c");
    EXPECT_EQ(textOf(expression.toString()), "a\nb\nc\n");
    for (const char* text : {"a", "b", "c"})
        EXPECT_THAT(hitsOf(expression, text), ElementsAre(text));
    for (const char* text : {"", "d", " b ", "a,b", "A"}) EXPECT_FALSE(expression.match(text));
}

TEST(ExpressionMatch, IsSetByItsConstructor) {
    const UExpressionMatch patterns("a,b*");
    EXPECT_TRUE(patterns.match("bc"));
    const UExpressionMatch numbers("1-5; 9", Type::kNumber, ';');
    EXPECT_STREQ(numbers.getExpression(), "1-5;9");
    EXPECT_TRUE(numbers.match("9"));
}

TEST(ExpressionMatch, ThatCannotBeSetByItsConstructorIsNone) {
    Records records;
    records = recordsOf([] { expectWithoutExpression(UExpressionMatch("x", Type::kNumber)); });
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records.back(), caught(kSet));
}

struct Kind {
    unsigned int type;
    const char* expression;
    const char* normalized;
    const char* candidate;
    std::vector<std::string> hits;
    const char* other;
};
class ExpressionKind : public testing::TestWithParam<Kind> {};

TEST_P(ExpressionKind, NormalizesItsPiecesAndGivesAllHitsInOrder) {
    const Kind& row = GetParam();
    UExpressionMatch expression;
    ASSERT_EQ(expression.setExpression(row.expression, row.type, ','), 0);
    EXPECT_STREQ(expression.getExpression(), row.normalized);
    EXPECT_EQ(hitsOf(expression, row.candidate), row.hits);
    EXPECT_FALSE(expression.match(row.other));
    EXPECT_FALSE(expression.match(nullptr));
    // What is normal is set again as it is, from the expression's own text too.
    ASSERT_EQ(expression.setExpression(expression.getExpression(), row.type, ','), 0);
    EXPECT_STREQ(expression.getExpression(), row.normalized);
    EXPECT_EQ(hitsOf(expression, row.candidate), row.hits);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExpressionKind,
    testing::Values(Kind{Type::kPattern, " a* ,*b,c", "a*,*b,c", "ab", {"a*", "*b"}, "bc"},
                    Kind{Type::kNumber, "1-5,3, 9 ", "1-5,3,9", " 3", {"1-5", "3"}, "6"},
                    Kind{Type::kSubnet,
                         "10.0.0.0/8,11.0.0.0/8,10.1.0.0/255.255.0.0",
                         "10.0.0.0/8,11.0.0.0/8,10.1.0.0/255.255.0.0",
                         "10.1.2.3",
                         {"10.0.0.0/8", "10.1.0.0/255.255.0.0"},
                         "12.1.2.3"},
                    Kind{Type::kTcp,
                         "10.1.2.3/8:80 ,10.0.0.0/8,10.0.0.0/8:81",
                         "10.1.2.3/255.0.0.0:80,10.0.0.0/255.0.0.0,10.0.0.0/255.0.0.0:81",
                         "10.9.9.9:80",
                         {"10.1.2.3/255.0.0.0:80", "10.0.0.0/255.0.0.0"},
                         "10.9.9.9"},
                    Kind{Type::kDns,
                         "*.Example.com:443, www.*,ftp.*",
                         "*.example.com:443,www.*,ftp.*",
                         "WWW.example.COM",
                         {"*.example.com:443", "www.*"},
                         "example.com"}));

TEST(ExpressionMatch, MatchesNumbersInTheWayOfItsKind) {
    EXPECT_THAT(hitsOf(UExpressionMatch("1*,*2,3"), 12u), ElementsAre("1*", "*2"));
    EXPECT_THAT(hitsOf(UExpressionMatch("1-5,3,9", Type::kNumber), 3u), ElementsAre("1-5", "3"));
    EXPECT_THAT(hitsOf(UExpressionMatch("10.0.0.0/8,0.0.0.0/0", Type::kSubnet), 0x0a010203u),
                ElementsAre("10.0.0.0/8", "0.0.0.0/0"));
    EXPECT_THAT(hitsOf(UExpressionMatch("0.0.0.0/0", Type::kTcp), 1u), ElementsAre());
    EXPECT_THAT(hitsOf(UExpressionMatch("*", Type::kDns), 1u), ElementsAre());
}

TEST(ExpressionMatch, CandidateOfAnotherKindMatchesNothing) {
    EXPECT_FALSE(UExpressionMatch("0-4294967295", Type::kNumber).match("a"));
    EXPECT_FALSE(UExpressionMatch("0.0.0.0/0", Type::kSubnet).match("host"));
    EXPECT_FALSE(UExpressionMatch("0.0.0.0/0", Type::kTcp).match("1.2.3.4"));
    EXPECT_FALSE(UExpressionMatch("0.0.0.0/0", Type::kTcp).match("host:80"));
}

TEST(ExpressionMatch, AsksEveryMemberExactlyAsItWouldAnswerAlone) {
    const char* const expressions[] = {"a*,1-2,*", "1,2-4294967295,3", "1.2.3.4/32,1.2.0.0/16",
                                       "1.2.0.0/16:80,1.2.3.4/32", "a*,*b,1*"};
    const char* const candidates[] = {"",          "a",           "ab",         "1",
                                      "-1",        "1-2",         "4294967296", "1.2.3.4",
                                      " 1.2.3.4 ", "1.2.3.4:80",  "1.2.3.4:81", "1.2.3.4:",
                                      ":80",       "1.2.3.4:a",   "A:B",        "1.2.9.9:80:1",
                                      nullptr,     "1.2.9.9:  80"};
    for (unsigned int type = 0; type < 5; ++type) {
        const UExpressionMatch expression(expressions[type], type);
        const UStrings patterns(expression.getExpression(), ',', 0);
        ASSERT_GT(patterns.getCount(), 0);
        for (const char* candidate : candidates) {
            std::vector<std::string> expected;
            for (int i = 0; i < patterns.getCount(); ++i) {
                const std::unique_ptr<URootMatch> matcher(
                    UExpressionMatch::createMatchObject(type, patterns.getItem(i)));
                if (matcher->match(candidate)) expected.emplace_back(patterns.getItem(i));
            }
            EXPECT_EQ(hitsOf(expression, candidate), expected)
                << type << ' ' << (candidate == nullptr ? "null" : candidate);
        }
    }
}

TEST(ExpressionMatch, ClearsTheHitsEvenWhenNothingMatches) {
    const UExpressionMatch expression("a");
    UStrings hits("x,y", ',', 0);
    EXPECT_FALSE(expression.match("b", hits));
    EXPECT_EQ(hits.getCount(), 0);
    hits.addItem("z");
    EXPECT_FALSE(expression.matchAsDWORD(7, hits));
    EXPECT_EQ(hits.getCount(), 0);
    hits.addItem("z");
    EXPECT_FALSE(expression.match(nullptr, hits));
    EXPECT_EQ(hits.getCount(), 0);
}

TEST(ExpressionMatch, CandidateMayBeOneOfTheHits) {
    const UExpressionMatch expression("a*,b");
    UStrings hits("abc", ',', 0);
    EXPECT_TRUE(expression.match(hits.getItem(0), hits));
    EXPECT_THAT(itemsOf(hits), ElementsAre("a*"));
}

struct Empty {
    const char* expression;
    char delimiter;
    const char* normalized;
};
class ExpressionOfNothing : public testing::TestWithParam<Empty> {};

TEST_P(ExpressionOfNothing, IsSetAndMatchesNothing) {
    UExpressionMatch expression("a");
    EXPECT_EQ(expression.setExpression(GetParam().expression, Type::kPattern, GetParam().delimiter),
              0);
    EXPECT_STREQ(expression.getExpression(), GetParam().normalized);
    EXPECT_EQ(textOf(expression.toString()), "");
    EXPECT_FALSE(expression.match(""));
    EXPECT_FALSE(expression.match("a"));
}

INSTANTIATE_TEST_SUITE_P(Rows, ExpressionOfNothing,
                         testing::Values(Empty{"", ',', ""}, Empty{nullptr, ',', ""},
                                         Empty{",,,", ',', ""}, Empty{"   ", ' ', ""},
                                         // Pieces of blanks are trimmed to nothing.
                                         Empty{" , ", ',', ","}));

TEST(ExpressionMatch, LeavesEmptyPiecesOut) {
    const UExpressionMatch expression(",a,,b,");
    EXPECT_STREQ(expression.getExpression(), "a,b");
    EXPECT_EQ(textOf(expression.toString()), "a\nb\n");
    const UExpressionMatch blank("a, ,b");
    EXPECT_EQ(textOf(blank.toString()), "a\nb\n");
}

TEST(ExpressionMatch, TakesAnyDelimiter) {
    EXPECT_EQ(textOf(UExpressionMatch("a b  c", Type::kPattern, ' ').toString()), "a\nb\nc\n");
    EXPECT_EQ(textOf(UExpressionMatch("a,b", Type::kPattern, '\0').toString()), "a,b\n");
    EXPECT_EQ(textOf(UExpressionMatch("a*b", Type::kPattern, '*').toString()), "a\nb\n");
    EXPECT_EQ(textOf(UExpressionMatch("1-2", Type::kNumber, '-').toString()), "1\n2\n");
    EXPECT_EQ(textOf(UExpressionMatch("a\xff"
                                      "b",
                                      Type::kPattern, '\xff')
                         .toString()),
              "a\nb\n");
}

TEST(ExpressionMatch, SplitsTheNormalFormAgain) {
    UExpressionMatch expression;
    EXPECT_EQ(expression.setExpression("A;B:c;D", Type::kDns, ';'), 0);
    EXPECT_EQ(textOf(expression.toString()), "a\nb:c\nd\n");
    EXPECT_EQ(expression.setExpression("host:443", Type::kDns, ':'), 0);
    EXPECT_EQ(textOf(expression.toString()), "host\n443\n");
    EXPECT_EQ(expression.setExpression("1.2.3.4/8", Type::kTcp, '.'), -1);
}

struct Failure {
    const char* rule;
    const char* expression;
    unsigned int type;
    Records records;
};
class ExpressionFailure : public testing::TestWithParam<Failure> {};

TEST_P(ExpressionFailure, IsLoggedAndLeavesNoExpression) {
    const Failure& row = GetParam();
    UExpressionMatch expression("a*,1*");
    Records records = row.records;
    records.push_back(caught(kSet));
    EXPECT_EQ(
        recordsOf([&] { EXPECT_EQ(expression.setExpression(row.expression, row.type, ','), -1); }),
        records);
    expectWithoutExpression(expression);
    EXPECT_EQ(expression.setExpression("a", Type::kPattern, ','), 0);
    EXPECT_TRUE(expression.match("a"));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExpressionFailure,
    testing::Values(
        Failure{"UnknownType", "a", 5, {raised(kCreate, "unknown type, 5")}},
        Failure{
            "UnknownLargeType", "a", 4294967295u, {raised(kCreate, "unknown type, 4294967295")}},
        Failure{"UnknownTypeOfNothing", "", 5, {raised(kCreate, "unknown type, 5")}},
        Failure{"NoNumber",
                "1,x,3",
                Type::kNumber,
                {raised("UDWORDMatch::setPattern()", "invalid pattern, x"),
                 caught("UDWORDMatch::setPattern()"),
                 raised("UDWORDMatch::UDWORDMatch()", "invalid pattern, x")}},
        Failure{"NoSubnet",
                "10.0.0.0/8,10.0.0.1",
                Type::kSubnet,
                {raised("UIPvXSubnet::parse()", "invalid subnet, 10.0.0.1", "/UIPAddress.h"),
                 caught("UIPSubnetMatch::setPattern()"),
                 raised("UIPSubnetMatch::UIPSubnetMatch()", "invalid pattern, 10.0.0.1")}},
        Failure{
            "NoEndpoint",
            "10.0.0.0/8,10.0.0.0/8:",
            Type::kTcp,
            {raised("UTCPMatch::setPattern()", "missing port part, 10.0.0.0/8:"),
             caught("UTCPMatch::setPattern()"),
             raised("UTCPMatch::normalize()", "wrong pattern, 10.0.0.0/8:"),
             caught("UTCPMatch::normalize()"), raised(kSet, "normalize() failed, 10.0.0.0/8:")}},
        Failure{"NoHost",
                "www,::",
                Type::kDns,
                {raised("UDNSMatch::setPattern()", "invalid host part, ::"),
                 caught("UDNSMatch::setPattern()"),
                 raised("UDNSMatch::normalize()", "wrong pattern, ::"),
                 caught("UDNSMatch::normalize()"), raised(kSet, "normalize() failed, ::")}}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST(ExpressionMatch, ReplacesTheExpressionBefore) {
    UExpressionMatch expression("a,b,c");
    EXPECT_EQ(expression.setExpression("1-5", Type::kNumber, ','), 0);
    EXPECT_EQ(textOf(expression.toString()), "1-5\n");
    EXPECT_FALSE(expression.match("a"));
    EXPECT_TRUE(expression.match("5"));
}

template <class Match>
void expectCreated(unsigned int type, const char* pattern) {
    const std::unique_ptr<URootMatch> matcher(UExpressionMatch::createMatchObject(type, pattern));
    const URootMatch& made = *matcher;
    EXPECT_EQ(typeid(made), typeid(Match));
    EXPECT_STREQ(made.getPattern(), pattern);
    EXPECT_EQ(textOf(made.toString()), pattern);
    // Null: a matcher that has no pattern yet.
    const std::unique_ptr<URootMatch> bare(UExpressionMatch::createMatchObject(type, nullptr));
    const URootMatch& without = *bare;
    EXPECT_EQ(typeid(without), typeid(Match));
    EXPECT_STREQ(without.getPattern(), "");
}

TEST(CreateMatchObject, MakesEachKindByItsCode) {
    expectCreated<UPatternMatch>(0, "a*");
    expectCreated<UDWORDMatch>(1, "1-2");
    expectCreated<UIPSubnetMatch>(2, "10.1.2.3/8");
    expectCreated<UTCPMatch>(3, "10.1.2.3/8:80");
    expectCreated<UDNSMatch>(4, "*.Example.com");
}

TEST(CreateMatchObject, RaisesForAKindThatThereIsNot) {
    for (const unsigned int type : {5u, 6u, 255u, 2147483648u, 4294967295u}) {
        const std::string message = "unknown type, " + std::to_string(type);
        EXPECT_EQ(recordsOf([&] {
                      EXPECT_THROW(UExpressionMatch::createMatchObject(type, "a"), UException);
                  }),
                  Records{raised(kCreate, message)});
    }
}

TEST(CreateMatchObject, LetsTheConstructorsExceptionPass) {
    for (unsigned int type = 1; type < 5; ++type) {
        try {
            UExpressionMatch::createMatchObject(type, "");
            FAIL();
        } catch (const UException& e) {
            EXPECT_STREQ(e.GetErrorMessage(), "EXCEPTION - invalid pattern, ") << type;
        }
    }
}

// The slots that callers built elsewhere go through, in their order.
TEST(RootMatch, KeepsTheOrderOfItsVirtualOperations) {
    using Slot = int (*)(URootMatch*, const char*);
    UDWORDMatch matcher;
    URootMatch* const root = &matcher;
    const auto slots = *reinterpret_cast<void***>(root);
    // Two slots are the destructor's.
    EXPECT_EQ(reinterpret_cast<Slot>(slots[2])(root, "7-9"), 0);
    EXPECT_STREQ(reinterpret_cast<const char* (*)(URootMatch*)>(slots[3])(root), "7-9");
    EXPECT_TRUE(reinterpret_cast<bool (*)(URootMatch*, const char*)>(slots[4])(root, "8"));
    EXPECT_TRUE(reinterpret_cast<bool (*)(URootMatch*, unsigned int)>(slots[5])(root, 9));
    CString out;
    const auto normalize =
        reinterpret_cast<int (*)(URootMatch*, const char*, CString&, char)>(slots[6]);
    EXPECT_EQ(normalize(root, "x", out, ','), 0);
    EXPECT_EQ(textOf(out), "x");
    EXPECT_EQ(textOf(reinterpret_cast<CString (*)(URootMatch*)>(slots[7])(root)), "7-9");
}

static_assert(std::is_abstract_v<URootMatch> && std::is_base_of_v<UObject, URootMatch>);
static_assert(!std::is_polymorphic_v<UExpressionMatch>);

TEST(ExpressionMatch, OfTenThousandMembersFindsTheLast) {
    constexpr int kMembers = 10000;
    std::string patterns, numbers, subnets, endpoints, hosts;
    for (int i = 0; i < kMembers; ++i) {
        const std::string n = std::to_string(i);
        const std::string address =
            "10." + std::to_string(i / 250) + "." + std::to_string(i % 250) + ".0";
        patterns += "p" + n + "-*,";
        numbers += n + ",";
        subnets += address + "/24,";
        endpoints += address + "/24:" + n + ",";
        hosts += "*.host" + n + ".org,";
    }
    const auto expectLast = [](const std::string& expression, unsigned int type,
                               const char* candidate) {
        const UExpressionMatch matcher(expression.c_str(), type);
        UStrings hits;
        EXPECT_TRUE(matcher.match(candidate, hits)) << type;
        EXPECT_EQ(hits.getCount(), 1) << type;
        EXPECT_FALSE(matcher.match("none")) << type;
    };
    expectLast(patterns, Type::kPattern, "p9999-x");
    expectLast(numbers, Type::kNumber, "9999");
    expectLast(subnets, Type::kSubnet, "10.39.249.7");
    expectLast(endpoints, Type::kTcp, "10.39.249.7:9999");
    expectLast(hosts, Type::kDns, "www.HOST9999.org");
}

TEST(ExpressionMatch, OfDelimitersAloneIsEmptyHoweverLong) {
    UExpressionMatch expression;
    EXPECT_EQ(expression.setExpression(std::string(1 << 20, ',').c_str(), Type::kNumber, ','), 0);
    EXPECT_STREQ(expression.getExpression(), "");
}

}  // namespace
