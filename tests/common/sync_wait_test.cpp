// Events and semaphores: what a wait gives and when. Only lower limits of time are exact.

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "UEvent.h"
#include "UMutex.h"
#include "USemaphore.h"
#include "on_threads.h"
#include "posix_calls.h"
#include "record_log.h"
#include "row_name.h"
#include "signal_storm.h"

namespace {

using std::chrono::milliseconds;

TEST(WaitResults, AreThePublishedNumbers) {
    EXPECT_EQ(kWaitAcquired, 0u);
    EXPECT_EQ(kWaitTimedOut, 258u);
    EXPECT_EQ(kWaitFailed, 4294967295u);
    EXPECT_EQ(kWaitForever, 4294967295u);
}

class Event : public testing::TestWithParam<bool> {
  protected:
    Event() { resetPosixCalls(); }
};

INSTANTIATE_TEST_SUITE_P(Kinds, Event, testing::Bool(), [](const auto& kind) {
    return std::string(kind.param ? "ManualReset" : "AutoReset");
});

TEST_P(Event, BeginsInTheStateGiven) {
    EXPECT_EQ(UEvent(GetParam(), true).wait(0), kWaitAcquired);
    EXPECT_EQ(UEvent(GetParam(), false).wait(0), kWaitTimedOut);
}

TEST_P(Event, StaysSignalledUntilReset) {
    UEvent event(GetParam(), false);
    event.set();
    for (const unsigned int timeout : {0u, 1u, 1000u, kWaitForever, 0u}) {
        EXPECT_EQ(event.wait(timeout), kWaitAcquired);
    }
    event.reset();
    EXPECT_EQ(event.wait(0), kWaitTimedOut);
    EXPECT_EQ(event.wait(1), kWaitTimedOut);
}

TEST_P(Event, WaitsAsLongAsAsked) {
    UEvent event(GetParam(), false);
    unsigned int result = 0;
    const auto time = timeOf([&] { result = event.wait(30); });
    EXPECT_EQ(result, kWaitTimedOut);
    EXPECT_GE(time, milliseconds(29));
}

TEST_P(Event, WakesAWaitWithoutLimit) {
    UEvent event(GetParam(), false);
    unsigned int result = 1;
    std::thread waiting([&] { result = event.wait(kWaitForever); });
    awaitCount(PosixCall::condWait, 1);
    event.set();
    waiting.join();
    EXPECT_EQ(result, kWaitAcquired);
}

TEST_P(Event, WakesALimitedWaitBeforeItsEnd) {
    UEvent event(GetParam(), false);
    unsigned int result = 1;
    const auto time = timeOf([&] {
        std::thread waiting([&] { result = event.wait(600000); });
        awaitCount(PosixCall::condTimedwait, 1);
        event.set();
        waiting.join();
    });
    EXPECT_EQ(result, kWaitAcquired);
    EXPECT_LT(time, milliseconds(300000));
}

TEST_P(Event, SignalsOnlyWhenSomebodyWaits) {
    UEvent event(GetParam(), false);
    event.set();
    EXPECT_EQ(countOf(PosixCall::condSignal), 0);
    EXPECT_EQ(countOf(PosixCall::condBroadcast), 0);
}

TEST_P(Event, GoesOnWaitingAfterASpuriousWakeUp) {
    UEvent event(GetParam(), false);
    // A wait that fails otherwise counts as one, too.
    failPosixCall(PosixCall::condTimedwait, EINVAL, 3);
    EXPECT_EQ(event.wait(1), kWaitTimedOut);
    EXPECT_GT(countOf(PosixCall::condTimedwait), 3);
}

TEST(ManualResetEvent, WakesAllThatWait) {
    resetPosixCalls();
    UEvent event(true, false);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] { EXPECT_EQ(event.wait(kWaitForever), kWaitAcquired); });
    }
    awaitCount(PosixCall::condWait, 3);
    event.set();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(countOf(PosixCall::condBroadcast), 1);
    EXPECT_EQ(countOf(PosixCall::condSignal), 0);
}

TEST(AutoResetEvent, WakesOneThatWaitsAtATime) {
    resetPosixCalls();
    UEvent event(false, false);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] { EXPECT_EQ(event.wait(kWaitForever), kWaitAcquired); });
    }
    awaitCount(PosixCall::condWait, 3);
    for (int i = 0; i < 3; ++i) event.set();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(countOf(PosixCall::condBroadcast), 0);
    EXPECT_GE(countOf(PosixCall::condSignal), 1);
    EXPECT_LE(countOf(PosixCall::condSignal), 3);
}

TEST(Event, LogsThatASignalFailed) {
    for (const bool manual : {true, false}) {
        const RecordLog log;
        resetPosixCalls();
        UEvent event(manual, false);
        std::thread waiting([&] { event.wait(kWaitForever); });
        awaitCount(PosixCall::condWait, 1);
        const PosixCall call = manual ? PosixCall::condBroadcast : PosixCall::condSignal;
        failPosixCall(call, EINVAL);
        event.set();
        waiting.join();
        ASSERT_EQ(log.items().size(), 1u);
        EXPECT_EQ(withoutLine(log.items()[0]),
                  std::string("1, /m_sync, LINE, , ") +
                      (manual ? "pthread_cond_broadcast" : "pthread_cond_signal") +
                      " - failed signal condition, 22, Invalid argument\n");
    }
}

TEST(Deadline, IsTheTimeOfDayAndTheTimeout) {
    UEvent event(true, false);
    for (const unsigned int timeout : {1u, 999u, 1000u, 1999u, 123456u, 4294967294u}) {
        resetPosixCalls();
        failPosixCall(PosixCall::condTimedwait, ETIMEDOUT);
        const auto before = std::chrono::system_clock::now();
        EXPECT_EQ(event.wait(timeout), kWaitTimedOut);
        const auto after = std::chrono::system_clock::now();
        ASSERT_EQ(waitDeadlines().size(), 1u);
        const timespec deadline = waitDeadlines()[0];
        EXPECT_LT(deadline.tv_nsec, 1000000000);
        using Clock = std::chrono::system_clock;
        const Clock::time_point time(std::chrono::duration_cast<Clock::duration>(
            std::chrono::seconds(deadline.tv_sec) + std::chrono::nanoseconds(deadline.tv_nsec)));
        EXPECT_GE(time - before, milliseconds(timeout) - std::chrono::microseconds(1));
        EXPECT_LE(time - after, milliseconds(timeout));
    }
}

TEST_P(Event, SignalledAsTheTimeRanOutIsSignalled) {
    UEvent event(GetParam(), false);
    inTheNextWait([&] { event.set(); });
    failPosixCall(PosixCall::condTimedwait, ETIMEDOUT);
    EXPECT_EQ(event.wait(1000), kWaitAcquired);
}

struct Sum {
    const char* rule;
    timeval now;
    unsigned int timeout;
    timespec deadline;
};
class DeadlineSum : public testing::TestWithParam<Sum> {};

TEST_P(DeadlineSum, IsCarriedIntoTheSeconds) {
    UEvent event(true, false);
    USemaphore semaphore(0, 1);
    resetPosixCalls();
    tellTimes({GetParam().now, GetParam().now});
    failPosixCall(PosixCall::condTimedwait, ETIMEDOUT, 2);
    EXPECT_EQ(event.wait(GetParam().timeout), kWaitTimedOut);
    EXPECT_EQ(semaphore.Acquire(GetParam().timeout), kWaitTimedOut);
    ASSERT_EQ(waitDeadlines().size(), 2u);
    for (const timespec& deadline : waitDeadlines()) {
        EXPECT_EQ(deadline.tv_sec, GetParam().deadline.tv_sec);
        EXPECT_EQ(deadline.tv_nsec, GetParam().deadline.tv_nsec);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DeadlineSum,
    testing::Values(Sum{"WholeSeconds", {100, 0}, 2000, {102, 0}},
                    Sum{"WithoutACarry", {100, 999}, 999, {100, 999999000}},
                    Sum{"ToTheSecond", {100, 500000}, 500, {101, 0}},
                    Sum{"OfMicroseconds", {100, 999999}, 1, {101, 999000}},
                    Sum{"Most", {100, 999999}, 1999, {102, 998999000}},
                    Sum{"LongestLimit", {100, 0}, 4294967294u, {4295067, 294000000}}),
    nameOfRow);

struct LimitedWait {
    const char* rule;
    unsigned int (*wait)(UEvent&, USemaphore&, unsigned int timeout);
    void (*wake)(UEvent&, USemaphore&);
};

// A test cannot set the clock that the platform waits by. Instead the library is told a wrong time
// of day when it fixes the limit, which comes to the same.
class ClockSet : public testing::TestWithParam<LimitedWait> {
  protected:
    ClockSet() { resetPosixCalls(); }

    static timeval timeOfDayAfter(std::chrono::seconds distance) {
        const auto time = std::chrono::system_clock::now() + distance;
        return {.tv_sec = std::chrono::system_clock::to_time_t(time), .tv_usec = 0};
    }

    unsigned int wait(unsigned int timeout) { return GetParam().wait(event, semaphore, timeout); }

    UEvent event{true, false};
    USemaphore semaphore{0, 1};
};

TEST_P(ClockSet, ForwardsEndsALimitedWaitAsTimedOut) {
    tellTimes({timeOfDayAfter(-std::chrono::hours(1))});
    EXPECT_EQ(wait(600000), kWaitTimedOut);
}

TEST_P(ClockSet, BackwardsMakesALimitedWaitLonger) {
    unsigned int result = 1;
    std::thread waiting([&] {
        tellTimes({timeOfDayAfter(std::chrono::hours(1))});
        result = wait(1);
    });
    awaitCount(PosixCall::condTimedwait, 1);
    std::this_thread::sleep_for(milliseconds(20));
    GetParam().wake(event, semaphore);
    waiting.join();
    EXPECT_EQ(result, kWaitAcquired);
}

INSTANTIATE_TEST_SUITE_P(
    Classes, ClockSet,
    testing::Values(LimitedWait{"Event",
                                [](UEvent& event, USemaphore&, unsigned int limit) {
                                    return event.wait(limit);
                                },
                                [](UEvent& event, USemaphore&) { event.set(); }},
                    LimitedWait{
                        "Semaphore",
                        [](UEvent&, USemaphore& s, unsigned int limit) { return s.Acquire(limit); },
                        [](UEvent&, USemaphore& s) { s.Release(); }}),
    nameOfRow);

using Calls = std::vector<PosixCall>;

TEST(Deadline, IsFixedBeforeTheLockIsTaken) {
    using enum PosixCall;
    const Calls limited{gettimeofday, mutexLock, mutexUnlock};
    UEvent event(true, true);
    USemaphore semaphore(1, 1);
    EXPECT_EQ(callsWithin([&] { event.wait(30); }), limited);
    EXPECT_EQ(callsWithin([&] { semaphore.Acquire(30); }), limited);
}

TEST(Deadline, IsNeededByLimitedWaitsOnly) {
    const Calls unlimited{PosixCall::mutexLock, PosixCall::mutexUnlock};
    for (const unsigned int timeout : {0u, kWaitForever}) {
        UEvent event(true, true);
        USemaphore semaphore(1, 1);
        EXPECT_EQ(callsWithin([&] { event.wait(timeout); }), unlimited);
        EXPECT_EQ(callsWithin([&] { semaphore.Acquire(timeout); }), unlimited);
    }
}

TEST(Semaphore, IsTakenAsOftenAsItsCount) {
    USemaphore semaphore(2, 5);
    EXPECT_EQ(semaphore.Acquire(0), kWaitAcquired);
    EXPECT_EQ(semaphore.Acquire(kWaitForever), kWaitAcquired);
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
    EXPECT_EQ(semaphore.Acquire(1), kWaitTimedOut);
}

TEST(Semaphore, LosesAReleaseAtItsCeiling) {
    USemaphore semaphore(0, 1);
    EXPECT_TRUE(semaphore.Release());
    EXPECT_TRUE(semaphore.Release());
    EXPECT_EQ(semaphore.Acquire(0), kWaitAcquired);
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
}

TEST(Semaphore, MayBeginAboveItsCeiling) {
    USemaphore semaphore(3, 1);
    EXPECT_TRUE(semaphore.Release());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(semaphore.Acquire(0), kWaitAcquired);
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
}

TEST(Semaphore, WithACeilingOfZeroIsNeverTaken) {
    USemaphore semaphore(0, 0);
    EXPECT_TRUE(semaphore.Release());
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
}

TEST(Semaphore, WaitsAsLongAsAsked) {
    USemaphore semaphore(0, 1);
    const auto time = timeOf([&] { EXPECT_EQ(semaphore.Acquire(30), kWaitTimedOut); });
    EXPECT_GE(time, milliseconds(29));
}

TEST(Semaphore, SignalsOneWaitOnlyWhenSomebodyWaits) {
    resetPosixCalls();
    USemaphore semaphore(0, 2);
    semaphore.Release();
    EXPECT_EQ(countOf(PosixCall::condSignal), 0);
    EXPECT_EQ(semaphore.Acquire(0), kWaitAcquired);
    std::thread waiting([&] { EXPECT_EQ(semaphore.Acquire(kWaitForever), kWaitAcquired); });
    awaitCount(PosixCall::condWait, 1);
    semaphore.Release();
    waiting.join();
    EXPECT_EQ(countOf(PosixCall::condSignal), 1);
}

TEST(Semaphore, LogsThatASignalFailed) {
    const RecordLog log;
    resetPosixCalls();
    USemaphore semaphore(0, 1);
    std::thread waiting([&] { semaphore.Acquire(kWaitForever); });
    awaitCount(PosixCall::condWait, 1);
    failPosixCall(PosixCall::condSignal, EINVAL);
    EXPECT_TRUE(semaphore.Release());
    waiting.join();
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_sync, LINE, , pthread_cond_signal - failed signal condition, 22, Invalid "
              "argument\n");
}

TEST(Semaphore, GoesOnWaitingAfterASpuriousWakeUp) {
    resetPosixCalls();
    USemaphore semaphore(0, 1);
    failPosixCall(PosixCall::condTimedwait, EINVAL, 3);
    EXPECT_EQ(semaphore.Acquire(1), kWaitTimedOut);
    EXPECT_GT(countOf(PosixCall::condTimedwait), 3);
}

TEST(Semaphore, ReleasedAsTheTimeRanOutIsTaken) {
    resetPosixCalls();
    USemaphore semaphore(0, 1);
    inTheNextWait([&] { semaphore.Release(); });
    failPosixCall(PosixCall::condTimedwait, ETIMEDOUT);
    EXPECT_EQ(semaphore.Acquire(1000), kWaitAcquired);
    EXPECT_EQ(semaphore.Acquire(0), kWaitTimedOut);
}

TEST(Semaphore, SignalsAWaitEvenWhenAReleaseIsLost) {
    resetPosixCalls();
    USemaphore semaphore(0, 0);
    inTheNextWait([&] { semaphore.Release(); });
    failPosixCall(PosixCall::condTimedwait, ETIMEDOUT);
    EXPECT_EQ(semaphore.Acquire(1000), kWaitTimedOut);
    EXPECT_EQ(countOf(PosixCall::condSignal), 1);
}

TEST(TimedWaits, LastTheirTimeUnderAStormOfSignals) {
    UMutex held;
    UEvent taken(true, false);
    UEvent done(true, false);
    std::thread holder([&] {
        sigset_t alarm;
        sigemptyset(&alarm);
        sigaddset(&alarm, SIGALRM);
        pthread_sigmask(SIG_BLOCK, &alarm, nullptr);
        held.Acquire(kWaitForever);
        taken.set();
        done.wait(kWaitForever);
        held.Release();
    });
    taken.wait(kWaitForever);
    UEvent event(false, false);
    USemaphore semaphore(0, 1);
    {
        const SignalStorm storm;
        for (const auto wait : {+[](UMutex&m, UEvent&, USemaphore&) { return m.Acquire(60); },
                                +[](UMutex&, UEvent&e, USemaphore&) { return e.wait(60); },
                                +[](UMutex&, UEvent&, USemaphore&s) { return s.Acquire(60); }}) {
            unsigned int result = 0;
            const auto time = timeOf([&] { result = wait(held, event, semaphore); });
            EXPECT_EQ(result, kWaitTimedOut);
            EXPECT_GE(time, milliseconds(59));
        }
    }
    done.set();
    holder.join();
}

}  // namespace
