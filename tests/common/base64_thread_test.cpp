// Decoding from several threads at once; a program of its own, so that no decoding comes before.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "CRFCBase64.h"
#include "on_threads.h"

namespace {

TEST(Base64Threads, FirstDecodingOnManyThreadsAtOnceIsRight) {
    constexpr int count = 8;
    constexpr int rounds = kThreadSteps / count;
    std::atomic<int> ready{0};
    std::atomic<int> right{0};
    onThreads(count, [&](int) {
        ++ready;
        while (ready < count) std::this_thread::yield();
        for (int round = 0; round < rounds; ++round) {
            if (CRFCBase64::Decode("QUJDREVGR0g=") == "ABCDEFGH") ++right;
        }
    });
    EXPECT_EQ(right, count * rounds);
}

}  // namespace
