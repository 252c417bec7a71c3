// The locks: who gets them and when. Only lower limits of time are exact.

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include "UAutoSync.h"
#include "UCriticalSection.h"
#include "UMutex.h"
#include "on_threads.h"
#include "posix_calls.h"
#include "record_log.h"

namespace {

using std::chrono::milliseconds;

constexpr int kHour = 3600;

TEST(CriticalSection, IsTakenAgainByItsHolderOnly) {
    UCriticalSection section;
    section.Lock();
    section.Lock();
    EXPECT_TRUE(section.TryLock());
    const auto tryElsewhere = [&] {
        const bool taken = section.TryLock();
        if (taken) section.Unlock();
        return taken;
    };
    for (int held = 3; held > 0; --held) {
        EXPECT_FALSE(onAnotherThread(tryElsewhere)) << held;
        section.Unlock();
    }
    EXPECT_TRUE(onAnotherThread(tryElsewhere));
}

TEST(CriticalSection, ExcludesOtherThreads) {
    UCriticalSection section;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 25000; ++n) {
                const UAutoSync sync(section, 5, "name");
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 100000);
}

bool isFree(UCriticalSection& section) {
    return onAnotherThread([&] {
        const bool taken = section.TryLock();
        if (taken) section.Unlock();
        return taken;
    });
}

TEST(AutoSync, HoldsTheSectionForItsScope) {
    UCriticalSection section;
    {
        const UAutoSync sync(section, 0, nullptr);
        EXPECT_FALSE(isFree(section));
    }
    EXPECT_TRUE(isFree(section));
}

TEST(AutoSync, LeavesTheSectionFreeWhenAnExceptionEndsItsScope) {
    UCriticalSection section;
    EXPECT_THROW(
        {
            const UAutoSync sync(section);
            throw std::runtime_error("end of scope");
        },
        std::runtime_error);
    EXPECT_TRUE(isFree(section));
}

// The library lets out what giving a lock back raises, should it ever raise anything.
TEST(AutoSync, MayRaiseAtTheEndOfItsScope) {
    EXPECT_FALSE(std::is_nothrow_destructible_v<UAutoSync>);
}

TEST(Mutex, IsTakenAgainByItsHolderOnly) {
    UMutex mutex;
    EXPECT_EQ(mutex.Acquire(kWaitForever), kWaitAcquired);
    EXPECT_EQ(mutex.Acquire(0), kWaitAcquired);
    EXPECT_EQ(mutex.Acquire(50), kWaitAcquired);
    for (int held = 3; held > 0; --held) {
        EXPECT_EQ(onAnotherThread([&] { return mutex.Acquire(0); }), kWaitTimedOut) << held;
        EXPECT_TRUE(mutex.Release());
    }
    EXPECT_EQ(onAnotherThread([&] {
                  const unsigned int result = mutex.Acquire(0);
                  mutex.Release();
                  return result;
              }),
              kWaitAcquired);
}

TEST(Mutex, BelongsToAnInitialOwner) {
    UMutex mutex(true);
    EXPECT_EQ(onAnotherThread([&] { return mutex.Acquire(0); }), kWaitTimedOut);
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, ATryOnAHeldOneTakesOneRestOfSixteenMilliseconds) {
    UMutex mutex(true);
    resetPosixCalls();
    const std::size_t restsTaken = onAnotherThread([&] {
        EXPECT_EQ(mutex.Acquire(0), kWaitTimedOut);
        EXPECT_EQ(rests().at(0).tv_sec, 0);
        EXPECT_EQ(rests().at(0).tv_nsec, 16000000);
        return rests().size();
    });
    EXPECT_EQ(restsTaken, 1u);
    EXPECT_TRUE(mutex.Release());
}

using Calls = std::vector<PosixCall>;

TEST(Mutex, ATryOnAHeldOneIsASingleTry) {
    using enum PosixCall;
    UMutex mutex(true);
    const Calls made = onAnotherThread([&] { return callsWithin([&] { mutex.Acquire(0); }); });
    EXPECT_EQ(made, (Calls{mutexTrylock, gettimeofday, nanosleep, gettimeofday}));
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, AFreeOneIsTakenWithoutAskingForTheTime) {
    UMutex mutex;
    EXPECT_EQ(callsWithin([&] { mutex.Acquire(50); }), Calls{PosixCall::mutexTrylock});
    EXPECT_EQ(callsWithin([&] { mutex.Acquire(kWaitForever); }), Calls{PosixCall::mutexLock});
    EXPECT_TRUE(mutex.Release());
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, ALimitedWaitLooksEverySixteenMilliseconds) {
    UMutex mutex(true);
    resetPosixCalls();
    milliseconds time{};
    const std::size_t restsTaken = onAnotherThread([&] {
        time = timeOf([&] { EXPECT_EQ(mutex.Acquire(50), kWaitTimedOut); });
        return rests().size();
    });
    EXPECT_GE(time, milliseconds(49));
    EXPECT_GE(restsTaken, 1u);
    EXPECT_LE(restsTaken, 4u);
    EXPECT_TRUE(mutex.Release());
}

// The limit is a time of day that is fixed when the wait begins.
TEST(Mutex, AClockSetForwardsEndsALimitedWaitAsTimedOut) {
    UMutex mutex(true);
    resetPosixCalls();
    onAnotherThread([&] {
        tellTimes({{.tv_sec = 10000, .tv_usec = 0}, {.tv_sec = 10000 + kHour, .tv_usec = 16000}});
        EXPECT_EQ(mutex.Acquire(600000), kWaitTimedOut);
        EXPECT_EQ(rests().size(), 1u);
        return 0;
    });
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, AClockSetBackwardsMakesALimitedWaitLonger) {
    UMutex mutex(true);
    resetPosixCalls();
    onAnotherThread([&] {
        std::vector<timeval> times{{.tv_sec = 10000, .tv_usec = 0}};
        for (int rest = 1; rest <= 9; ++rest) {
            times.push_back({.tv_sec = 10000 - kHour, .tv_usec = rest * 16000});
        }
        times.push_back({.tv_sec = 10000, .tv_usec = 50001});
        tellTimes(times);
        EXPECT_EQ(mutex.Acquire(50), kWaitTimedOut);
        EXPECT_EQ(rests().size(), 10u);
        return 0;
    });
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, AnInterruptedRestIsTakenToItsEnd) {
    UMutex mutex(true);
    resetPosixCalls();
    onAnotherThread([&] {
        leaveOver({.tv_sec = 0, .tv_nsec = 5000000});
        failPosixCall(PosixCall::nanosleep, EINTR);
        EXPECT_EQ(mutex.Acquire(0), kWaitTimedOut);
        EXPECT_EQ(rests().size(), 2u);
        EXPECT_EQ(rests().back().tv_nsec, 5000000);
        return 0;
    });
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, IsTakenWhenItBecomesFreeWithinTheTime) {
    UMutex mutex(true);
    resetPosixCalls();
    unsigned int result = 1;
    std::thread waiting([&] {
        result = mutex.Acquire(600000);
        mutex.Release();
    });
    awaitCount(PosixCall::nanosleep, 1);
    EXPECT_TRUE(mutex.Release());
    waiting.join();
    EXPECT_EQ(result, kWaitAcquired);
}

TEST(Mutex, AnyOtherFailureIsAFailure) {
    const RecordLog log;
    UMutex mutex;
    failPosixCall(PosixCall::mutexTrylock, EINVAL);
    EXPECT_EQ(mutex.Acquire(10), kWaitFailed);
    failPosixCall(PosixCall::mutexLock, EAGAIN);
    EXPECT_EQ(mutex.Acquire(kWaitForever), kWaitFailed);
    EXPECT_TRUE(mutex.Release());
    EXPECT_EQ(log.items().size(), 0u);
}

TEST(TimedLock, ADeadlineOfZeroIsASingleTry) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const timespec zero{};
    resetPosixCalls();
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &zero), 0);
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &zero), ETIMEDOUT);
    failPosixCall(PosixCall::mutexTrylock, EINVAL);
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &zero), EINVAL);
    EXPECT_EQ(countOf(PosixCall::nanosleep), 0);
    pthread_mutex_unlock(&mutex);
}

TEST(TimedLock, IsOverOnlyWhenTheTimeIsPastTheDeadline) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const timespec deadline{.tv_sec = 100, .tv_nsec = 5000};
    ASSERT_EQ(pthread_mutex_lock(&mutex), 0);
    const timeval reached{.tv_sec = 100, .tv_usec = 5};
    const timeval before{.tv_sec = 99, .tv_usec = 999999};
    for (const timeval past :
         {timeval{.tv_sec = 100, .tv_usec = 6}, timeval{.tv_sec = 101, .tv_usec = 0}}) {
        resetPosixCalls();
        tellTimes({before, reached, past});
        EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &deadline), ETIMEDOUT);
        EXPECT_EQ(countOf(PosixCall::mutexTrylock), 3);
        EXPECT_EQ(countOf(PosixCall::nanosleep), 3);
    }
    pthread_mutex_unlock(&mutex);
}

TEST(TimedLock, GivesWhatALaterTryGave) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const timespec deadline{.tv_sec = 100, .tv_nsec = 0};
    resetPosixCalls();
    failPosixCall(PosixCall::mutexTrylock, EBUSY);
    tellTimes({{.tv_sec = 99, .tv_usec = 0}});
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &deadline), 0);
    pthread_mutex_unlock(&mutex);
}

TEST(TimedLock, APastDeadlineStillTakesARest) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const timespec past{.tv_sec = 1, .tv_nsec = 0};
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &past), 0);
    resetPosixCalls();
    EXPECT_EQ(xpthread_mutex_timedlock(&mutex, &past), ETIMEDOUT);
    EXPECT_EQ(countOf(PosixCall::nanosleep), 1);
    pthread_mutex_unlock(&mutex);
}

}  // namespace
