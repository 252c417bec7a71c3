// Matching from several threads at once; run under the thread sanitizer, too.

#include <gtest/gtest.h>

#include "UExpressionMatch.h"
#include "on_threads.h"

namespace {

TEST(MatcherThreads, MayAskOneExpressionAtOnce) {
    const UExpressionMatch expressions[] = {
        UExpressionMatch("a*,*b"),
        UExpressionMatch("1-5,9", UExpressionMatch::kNumber),
        UExpressionMatch("10.0.0.0/8,11.0.0.0/8", UExpressionMatch::kSubnet),
        UExpressionMatch("10.0.0.0/8:80,11.0.0.0/8", UExpressionMatch::kTcp),
        UExpressionMatch("*.example.com,www.*", UExpressionMatch::kDns),
    };
    const char* const candidates[] = {"xb", "9", "11.1.1.1", "11.1.1.1:80", "WWW.host"};
    constexpr int threads = 4;
    constexpr int questions = 4;  // of each round
    onThreads(threads, [&](int) {
        for (int i = 0; i < kThreadSteps / threads / questions; ++i) {
            const auto kind = static_cast<std::size_t>(i % 5);
            UStrings hits;
            EXPECT_TRUE(expressions[kind].match(candidates[kind], hits));
            EXPECT_EQ(hits.getCount(), 1);
            EXPECT_FALSE(expressions[kind].match("none"));
            EXPECT_EQ(expressions[kind].matchAsDWORD(0x0b010101), kind == 2);
            EXPECT_NE(expressions[kind].toString().GetLength(), 0);
        }
    });
}

}  // namespace
