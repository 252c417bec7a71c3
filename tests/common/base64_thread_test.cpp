// Decoding from several threads at once; a program of its own, so that no decoding comes before.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "CRFCBase64.h"

namespace {

TEST(Base64Threads, FirstDecodingOnManyThreadsAtOnceIsRight) {
    constexpr int count = 8;
    constexpr int rounds = 12500;
    std::atomic<int> ready{0};
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&] {
            ++ready;
            while (ready < count) std::this_thread::yield();
            for (int round = 0; round < rounds; ++round) {
                if (CRFCBase64::Decode("QUJDREVGR0g=") == "ABCDEFGH") ++right;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, count * rounds);
}

}  // namespace
