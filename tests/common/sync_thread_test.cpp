// The synchronisation classes under contention; run under the thread sanitizer, too.

#include <gtest/gtest.h>

#include <atomic>

#include "UEvent.h"
#include "UMutex.h"
#include "USemaphore.h"
#include "on_threads.h"
#include "signal_storm.h"

namespace {

// Contention for one object of each class. What comes out does not depend on signals.

void contendForEvent(bool manualReset) {
    constexpr int kSteps = 20000;
    UEvent event(manualReset, false);
    onThreads(6, [&](int thread) {
        for (int step = 0; step < kSteps; ++step) {
            if (thread < 2) {
                event.set();
            } else if (thread == 2) {
                event.reset();
            } else {
                const unsigned int result = event.wait(step % 50 == 0 ? 1 : 0);
                ASSERT_TRUE(result == kWaitAcquired || result == kWaitTimedOut) << result;
            }
        }
    });
    event.set();
    EXPECT_EQ(event.wait(kWaitForever), kWaitAcquired);
}

void contendForSemaphore() {
    constexpr int kProducers = 3;
    constexpr int kConsumers = 3;
    constexpr int kSteps = 20000;
    constexpr int kInitial = 2;
    USemaphore semaphore(kInitial, 10);
    std::atomic<int> taken{0};
    onThreads(kProducers + kConsumers, [&](int thread) {
        for (int step = 0; step < kSteps; ++step) {
            if (thread < kProducers) {
                ASSERT_TRUE(semaphore.Release());
            } else if (semaphore.Acquire(step % 50 == 0 ? 1 : 0) == kWaitAcquired) {
                ++taken;
            }
        }
    });
    while (semaphore.Acquire(0) == kWaitAcquired) ++taken;
    EXPECT_GE(taken, kInitial);
    EXPECT_LE(taken, kInitial + kProducers * kSteps);
}

void contendForMutex() {
    constexpr int kSteps = 25000;
    UMutex mutex;
    int count = 0;
    std::atomic<int> expected{0};
    onThreads(4, [&](int thread) {
        for (int step = 0; step < kSteps; ++step) {
            const bool limited = thread == 0 && step % 1000 == 0;
            if (mutex.Acquire(limited ? 1 : kWaitForever) != kWaitAcquired) continue;
            ASSERT_EQ(mutex.Acquire(0), kWaitAcquired);
            ASSERT_EQ(mutex.Acquire(kWaitForever), kWaitAcquired);
            ++count;
            ++expected;
            for (int depth = 0; depth < 3; ++depth) ASSERT_TRUE(mutex.Release());
        }
    });
    EXPECT_EQ(count, expected);
    EXPECT_GE(count, 3 * kSteps);
}

class EventContention : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Kinds, EventContention, testing::Bool(), [](const auto& kind) {
    return std::string(kind.param ? "ManualReset" : "AutoReset");
});

TEST_P(EventContention, SettersResettersAndWaitersGetOnlyStatedResults) {
    contendForEvent(GetParam());
}

TEST_P(EventContention, IsUndisturbedByAStormOfSignals) {
    const SignalStorm storm;
    contendForEvent(GetParam());
}

TEST_P(EventContention, TwoThreadsWakeEachOtherInTurn) {
    constexpr int kTurns = 25000;
    UEvent ping(GetParam(), false);
    UEvent pong(GetParam(), false);
    int turns = 0;  // written by whoever has the turn
    onThreads(2, [&](int thread) {
        UEvent& mine = thread == 0 ? ping : pong;
        UEvent& others = thread == 0 ? pong : ping;
        for (int i = 0; i < kTurns; ++i) {
            if (thread == 0) {
                ++turns;
                others.set();
            }
            ASSERT_EQ(mine.wait(kWaitForever), kWaitAcquired);
            mine.reset();
            if (thread == 1) {
                ++turns;
                others.set();
            }
        }
    });
    EXPECT_EQ(turns, 2 * kTurns);
}

TEST(SemaphoreContention, NobodyTakesMoreThanWasReleased) { contendForSemaphore(); }

TEST(SemaphoreContention, IsUndisturbedByAStormOfSignals) {
    const SignalStorm storm;
    contendForSemaphore();
}

TEST(SemaphoreContention, EveryReleaseBelowTheCeilingIsTaken) {
    constexpr int kSteps = 20000;
    USemaphore semaphore(0, 4 * kSteps);
    onThreads(8, [&](int thread) {
        for (int step = 0; step < kSteps; ++step) {
            if (thread < 4) {
                semaphore.Release();
            } else {
                ASSERT_EQ(semaphore.Acquire(kWaitForever), kWaitAcquired);
            }
        }
    });
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
}

TEST(MutexContention, ThreeDeepHoldersExcludeEachOther) { contendForMutex(); }

TEST(MutexContention, IsUndisturbedByAStormOfSignals) {
    const SignalStorm storm;
    contendForMutex();
}

}  // namespace
