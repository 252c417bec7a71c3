// What a matcher takes, it gives back; asked of this system's allocator.

#include <gtest/gtest.h>
#include <malloc.h>

#include "UExpressionMatch.h"

namespace {

TEST(ExpressionMemory, IsGivenBackWhetherTheExpressionCanBeSetOrNot) {
    const auto setManyTimes = [] {
        for (int i = 0; i < 1000; ++i) {
            UExpressionMatch expression("10.0.0.0/8:80", UExpressionMatch::kTcp);
            expression.setExpression("10.0.0.0/8:81", UExpressionMatch::kTcp, ',');
            expression.setExpression("10.0.0.0/8:", UExpressionMatch::kTcp, ',');
            expression.setExpression("1,x", UExpressionMatch::kNumber, ',');
        }
    };
    // Less than a byte for each, where a matcher has hundreds.
    setManyTimes();
    const std::size_t before = mallinfo2().uordblks;
    setManyTimes();
    EXPECT_LT(mallinfo2().uordblks, before + 1000);
}

}  // namespace
