// Lack of memory at every allocation of setting a pattern and of matching: the matcher either is
// what it should be or has no pattern, and what is in use never becomes wider than it was written.

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <new>
#include <string>

#include "StringHelper.h"
#include "UException.h"
#include "UExpressionMatch.h"
#include "UPatternMatch.h"
#include "UTCPMatch.h"
#include "failing_memory.h"
#include "matcher_records.h"
#include "row_name.h"

namespace {

struct Row {
    const char* rule;
    unsigned int type;
    const char* pattern;
    const char* match;
    const char* noMatch;
};
class WithoutMemory : public testing::TestWithParam<Row> {};

TEST_P(WithoutMemory, PatternIsSetWholeOrNotAtAll) {
    const Row& row = GetParam();
    const std::unique_ptr<URootMatch> matcher(
        UExpressionMatch::createMatchObject(row.type, nullptr));
    int result = 0;
    int failures = 0;
    failingEach(
        [&] {
            result = -1;
            try {
                result = matcher->setPattern(row.pattern);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(row.type, UExpressionMatch::kPattern);
            }
        },
        [&](bool failed) {
            failures += failed ? 1 : 0;
            EXPECT_TRUE(failed || result == 0);
            EXPECT_STREQ(matcher->getPattern(), result == 0 ? row.pattern : "");
            EXPECT_EQ(matcher->match(row.match), result == 0);
            EXPECT_FALSE(matcher->match(row.noMatch));
        });
    EXPECT_GT(failures, 2);
}

TEST_P(WithoutMemory, ExpressionIsSetWholeOrNotAtAll) {
    const Row& row = GetParam();
    const std::string two = std::string(row.pattern) + ";" + row.pattern;
    UExpressionMatch expression;
    int result = 0;
    int failures = 0;
    failingEach([&] { result = expression.setExpression(two.c_str(), row.type, ';'); },
                [&](bool failed) {
                    failures += failed ? 1 : 0;
                    EXPECT_TRUE(failed || result == 0);
                    UStrings hits;
                    EXPECT_EQ(expression.match(row.match, hits), result == 0);
                    EXPECT_EQ(hits.getCount(), result == 0 ? 2 : 0);
                    EXPECT_FALSE(expression.match(row.noMatch));
                    EXPECT_EQ(*expression.getExpression() != '\0', result == 0);
                });
    EXPECT_GT(failures, 10);
}

TEST_P(WithoutMemory, MatchingRaisesBadAllocOrAnswersRightly) {
    const Row& row = GetParam();
    const UExpressionMatch expression(row.pattern, row.type, ';');
    const std::unique_ptr<URootMatch> matcher(
        UExpressionMatch::createMatchObject(row.type, row.pattern));
    for (const auto& [text, expected] : {std::pair{row.match, true}, {row.noMatch, false}}) {
        const auto matches = [&](const auto& object) {
            failingEach(
                [&] {
                    try {
                        EXPECT_EQ(object.match(text), expected) << text;
                    } catch (const std::bad_alloc&) {
                    }
                },
                [](bool) {});
        };
        matches(expression);
        matches(*matcher);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WithoutMemory,
    testing::Values(Row{"Wildcard", 0, "a*b*c", "abc", "abcd"}, Row{"Number", 1, "1-2", "2", "3"},
                    Row{"Subnet", 2, "10.0.0.0/8", "10.1.1.1", "11.1.1.1"},
                    Row{"Endpoint", 3, "10.0.0.0/8:80", "10.1.1.1:80", "10.1.1.1:81"},
                    Row{"Host", 4, "*.example.com:443", "www.example.com", "example.org"}),
    nameOfRow);

TEST(PatternWithoutMemory, IsEmptyAfterwards) {
    UPatternMatch matcher("abc");
    {
        const FailingAllocation failing(1);
        EXPECT_THROW(matcher.setPattern("x*"), std::bad_alloc);
    }
    EXPECT_STREQ(matcher.getPattern(), "");
    EXPECT_TRUE(matcher.match(""));
    EXPECT_FALSE(matcher.match("abc"));
    EXPECT_FALSE(matcher.match("xyz"));
}

TEST(MatcherWithoutMemory, IsNoObjectAndRaisesWhy) {
    const FailingAllocation failing(1);
    try {
        UExpressionMatch::createMatchObject(UExpressionMatch::kNumber, "1-2");
        FAIL();
    } catch (const UException& e) {
        EXPECT_STREQ(e.GetFunctionName(), "UExpressionMatch::createMatchObject()");
        EXPECT_EQ(std::string(e.GetErrorMessage()),
                  "EXCEPTION - error, type, pattern, " + std::to_string(ENOMEM) + ", 1, 1-2");
    }
}

TEST(MatcherWithoutMemory, NamesAnotherLineThanAnUnknownKind) {
    const auto lineOfFailure = [](unsigned int type) {
        try {
            UExpressionMatch::createMatchObject(type, "1-2");
        } catch (const UException& e) {
            return e.GetLine();
        }
        return 0u;
    };
    const unsigned int unknown = lineOfFailure(5);
    const FailingAllocation failing(1);
    const unsigned int noMemory = lineOfFailure(UExpressionMatch::kNumber);
    EXPECT_NE(unknown, 0u);
    EXPECT_NE(noMemory, 0u);
    EXPECT_NE(unknown, noMemory);
}

TEST(HitsWithoutMemory, LackOneThatIsLoggedAndTheAnswerStays) {
    const UExpressionMatch expression("1-5,3", UExpressionMatch::kNumber);
    int failures = 0;
    failingEach(
        [&] {
            UStrings hits("old", ',', 0);
            const RecordLog log;
            EXPECT_TRUE(expression.matchAsDWORD(3, hits));
            EXPECT_GE(hits.getCount(), 1);
            EXPECT_STRNE(hits.getItem(0), "old");
            EXPECT_EQ(log.items().empty(), hits.getCount() == 2);
        },
        [&](bool failed) { failures += failed ? 1 : 0; });
    EXPECT_GT(failures, 2);
}

TEST(EndpointWithoutMemory, NamesTheNetworkWhenThatIsWhatCouldNotBeSet) {
    bool named = false;
    for (int n = 1; n < 100 && !named; ++n) {
        UTCPMatch matcher;
        const Records records = recordsOf([&] {
            const FailingAllocation failing(n);
            matcher.setPattern("10.0.0.0/8:80");
        });
        for (const std::string& record : records) {
            named |=
                record == raised("UTCPMatch::setPattern()", "invalid network part, 10.0.0.0/8:80");
        }
    }
    EXPECT_TRUE(named);
}

TEST(ExpressionWithoutMemory, ConstructorLeavesNoneAndRaisesNothing) {
    failingEach(
        [] {
            const UExpressionMatch expression("10.0.0.0/8,11.0.0.0/8", UExpressionMatch::kSubnet);
            const bool isSet = *expression.getExpression() != '\0';
            EXPECT_EQ(expression.matchAsDWORD(0x0b000001), isSet);
        },
        [](bool) {});
}

}  // namespace
