#include "interlocked.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <vector>

namespace {

TEST(Interlocked, StepsByOneAndGivesTheNewValue) {
    for (const long before : {0L, -1L, 41L, long{INT_MAX}, long{UINT_MAX}, long{INT_MIN}}) {
        long volatile value = before;
        EXPECT_EQ(InterlockedIncrement(&value), before + 1);
        EXPECT_EQ(value, before + 1);
        EXPECT_EQ(InterlockedDecrement(&value), before);
        EXPECT_EQ(InterlockedDecrement(&value), before - 1);
        EXPECT_EQ(value, before - 1);
    }
}

TEST(Interlocked, LosesNoStepOfManyThreads) {
    constexpr int kSteps = 100000;
    long volatile up = 0;
    long volatile down = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int step = 0; step < kSteps; ++step) {
                InterlockedIncrement(&up);
                InterlockedDecrement(&down);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(up, 4 * kSteps);
    EXPECT_EQ(down, -4 * kSteps);
}

}  // namespace
