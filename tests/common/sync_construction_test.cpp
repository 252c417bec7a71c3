// What making and destroying a synchronisation object does when the platform refuses.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "UAutoSync.h"
#include "UCriticalSection.h"
#include "UEvent.h"
#include "UException.h"
#include "UMutex.h"
#include "USemaphore.h"
#include "bare_log.h"
#include "failing_memory.h"
#include "posix_calls.h"
#include "process_log.h"
#include "record_log.h"
#include "row_name.h"

namespace {

using Action = std::function<void()>;

void makeCriticalSection() { UCriticalSection section; }
void makeMutex() { UMutex mutex; }
void makeEvent() { UEvent event(true, false); }
void makeSemaphore() { USemaphore semaphore(0, 1); }

std::string detail(int error) { return ", " + std::to_string(error) + ", " + std::strerror(error); }

struct Refusal {
    const char* rule;
    Action make;
    PosixCall call;
    const char* message;
};
class Construction : public testing::TestWithParam<Refusal> {};

TEST_P(Construction, RaisesWhatThePlatformRefused) {
    const RecordLog log;
    resetPosixCalls();
    failPosixCall(GetParam().call, EAGAIN);
    try {
        GetParam().make();
        FAIL() << "nothing was raised";
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetFileName(), "/m_sync");
        EXPECT_STREQ(e.GetFunctionName(), "");
        EXPECT_GT(e.GetLine(), 0u);
        EXPECT_EQ(e.GetErrorMessage(),
                  "EXCEPTION - " + std::string(GetParam().message) + detail(EAGAIN));
    }
    EXPECT_EQ(log.items().size(), 1u);
}

TEST_P(Construction, LeavesNothingBehindWhenItFails) {
    resetPosixCalls();
    failPosixCall(GetParam().call, EAGAIN);
    EXPECT_THROW(GetParam().make(), UException);
    const auto made = [&](PosixCall init) {
        return countOf(init) - (GetParam().call == init ? 1 : 0);
    };
    EXPECT_EQ(made(PosixCall::mutexInit), countOf(PosixCall::mutexDestroy));
    EXPECT_EQ(made(PosixCall::condInit), countOf(PosixCall::condDestroy));
    EXPECT_EQ(made(PosixCall::mutexattrInit), countOf(PosixCall::mutexattrDestroy));
}

constexpr char kAttributes[] = "pthread_mutexattr_init - failed to initialize mutexattr";
constexpr char kMutex[] = "pthread_mutex_init - failed to initialize mutex";
constexpr char kCondition[] = "pthread_cond_init - failed to initialize condition variable";

INSTANTIATE_TEST_SUITE_P(
    Rows, Construction,
    testing::Values(
        Refusal{"CriticalSectionAttributes", makeCriticalSection, PosixCall::mutexattrInit,
                kAttributes},
        Refusal{"CriticalSectionMutex", makeCriticalSection, PosixCall::mutexInit, kMutex},
        Refusal{"MutexAttributes", makeMutex, PosixCall::mutexattrInit, kAttributes},
        Refusal{"MutexRecursiveType", makeMutex, PosixCall::mutexattrSettype,
                "pthread_mutexattr_settype - failed to set PTHREAD_MUTEX_RECURSIVE on mutexattr"},
        Refusal{"MutexMutex", makeMutex, PosixCall::mutexInit, kMutex},
        Refusal{"EventMutex", makeEvent, PosixCall::mutexInit, kMutex},
        Refusal{"EventCondition", makeEvent, PosixCall::condInit, kCondition},
        Refusal{"SemaphoreMutex", makeSemaphore, PosixCall::mutexInit, kMutex},
        Refusal{"SemaphoreCondition", makeSemaphore, PosixCall::condInit, kCondition}),
    nameOfRow);

TEST(CriticalSection, IgnoresThatItsTypeWasRefused) {
    const RecordLog log;
    resetPosixCalls();
    failPosixCall(PosixCall::mutexattrSettype, EINVAL);
    EXPECT_NO_THROW(makeCriticalSection());
    EXPECT_EQ(log.items().size(), 0u);
}

struct Complaint {
    const char* rule;
    PosixCall call;
    Action act;
    const char* message;
};
class Failing : public testing::TestWithParam<Complaint> {
  protected:
    void actWithFailure() {
        resetPosixCalls();
        failPosixCall(GetParam().call, EINVAL);
        EXPECT_NO_THROW(GetParam().act());
    }
};

TEST_P(Failing, IsLoggedAndTheOperationGoesOn) {
    const RecordLog log;
    actWithFailure();
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_sync, LINE, , " + std::string(GetParam().message) + detail(EINVAL) + "\n");
}

TEST_P(Failing, IsNotLoggedBelowLevelOne) {
    const RecordLog log(-1);
    actWithFailure();
    EXPECT_EQ(log.items().size(), 0u);
}

TEST_P(Failing, NeedsNoLog) { actWithFailure(); }

TEST_P(Failing, NeedsNoMemory) {
    const RecordLog log;
    for (int n = 1, happened = true; happened; ++n) {
        resetPosixCalls();
        failPosixCall(GetParam().call, EINVAL);
        const FailingAllocation failing(n);
        EXPECT_NO_THROW(GetParam().act()) << n;
        happened = failing.happened();
    }
}

// A log that raises whenever it is written to.
class RaisingLog final : public BareLog {
  public:
    int WriteLogItem(const char* /*text*/) override { throw std::logic_error("the log's own"); }

  private:
    const AsProcessLog m_asProcessLog{*this};
};

// What a destructor raises while an exception unwinds would end a user's process.
TEST_P(Failing, RaisesNothingWhileAnExceptionUnwindsWhateverTheLogRaises) {
    RaisingLog log;
    struct AtTheEnd {
        ~AtTheEnd() { act(); }
        Action act;
    };
    const auto unwind = [this] {
        const AtTheEnd atTheEnd{[this] { actWithFailure(); }};
        throw std::runtime_error("end of scope");
    };
    EXPECT_THROW(unwind(), std::runtime_error);
    EXPECT_GE(countOf(GetParam().call), 1);
}

TEST(AutoSync, LetsAnExceptionThatUnwindsItThroughWhenItsEndFails) {
    RaisingLog log;
    UCriticalSection section;
    resetPosixCalls();
    EXPECT_THROW(
        {
            const UAutoSync sync(section);
            failPosixCall(PosixCall::mutexUnlock, EINVAL);
            throw std::runtime_error("end of scope");
        },
        std::runtime_error);
    EXPECT_EQ(countOf(PosixCall::mutexUnlock), 1);
}

constexpr char kLock[] = "pthread_mutex_lock - failed to lock mutex";
constexpr char kUnlock[] = "pthread_mutex_unlock - failed to unlock mutex";
constexpr char kDestroyMutex[] = "pthread_mutex_destroy - failed to destroy mutex";
constexpr char kDestroyAttributes[] =
    "pthread_mutexattr_destroy - failed to destroy mutex attributes";
constexpr char kDestroyCondition[] = "pthread_cond_destroy - failed to destroy condition variable";

void lockSection() {
    UCriticalSection section;
    section.Lock();
    section.Unlock();
}
void guardScope() {
    UCriticalSection section;
    const UAutoSync sync(section);
}
void releaseMutex() {
    UMutex mutex(true);
    EXPECT_FALSE(mutex.Release());
}
void setEvent() {
    UEvent event(true, false);
    event.set();
    EXPECT_EQ(event.wait(0), 0u);
}
void resetEvent() {
    UEvent event(true, true);
    event.reset();
    EXPECT_EQ(event.wait(0), 258u);
}
void waitForEvent() {
    UEvent event(true, true);
    EXPECT_EQ(event.wait(0), 0u);
}
void acquireSemaphore() {
    USemaphore semaphore(1, 1);
    EXPECT_EQ(semaphore.Acquire(0), 0u);
}
void releaseSemaphore() {
    USemaphore semaphore(0, 1);
    EXPECT_TRUE(semaphore.Release());
    EXPECT_EQ(semaphore.Acquire(0), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Failing,
    testing::Values(
        Complaint{"SectionLock", PosixCall::mutexLock, lockSection,
                  "pthread_mutex_lock - failed to lock"},
        Complaint{"SectionUnlock", PosixCall::mutexUnlock, lockSection,
                  "pthread_mutex_unlock - failed to unlock"},
        Complaint{"GuardBegin", PosixCall::mutexLock, guardScope,
                  "pthread_mutex_lock - failed to lock"},
        Complaint{"GuardEnd", PosixCall::mutexUnlock, guardScope,
                  "pthread_mutex_unlock - failed to unlock"},
        Complaint{"MutexRelease", PosixCall::mutexUnlock, releaseMutex,
                  "pthread_mutex_unlock - failed to release mutex"},
        Complaint{"EventSetLock", PosixCall::mutexLock, setEvent, kLock},
        Complaint{"EventSetUnlock", PosixCall::mutexUnlock, setEvent, kUnlock},
        Complaint{"EventResetLock", PosixCall::mutexLock, resetEvent, kLock},
        Complaint{"EventResetUnlock", PosixCall::mutexUnlock, resetEvent, kUnlock},
        Complaint{"EventWaitLock", PosixCall::mutexLock, waitForEvent, kLock},
        Complaint{"EventWaitUnlock", PosixCall::mutexUnlock, waitForEvent, kUnlock},
        Complaint{"SemaphoreAcquireLock", PosixCall::mutexLock, acquireSemaphore, kLock},
        Complaint{"SemaphoreAcquireUnlock", PosixCall::mutexUnlock, acquireSemaphore, kUnlock},
        Complaint{"SemaphoreReleaseLock", PosixCall::mutexLock, releaseSemaphore, kLock},
        Complaint{"SemaphoreReleaseUnlock", PosixCall::mutexUnlock, releaseSemaphore, kUnlock},
        Complaint{"SectionDestroyMutex", PosixCall::mutexDestroy, makeCriticalSection,
                  kDestroyMutex},
        Complaint{"SectionDestroyAttributes", PosixCall::mutexattrDestroy, makeCriticalSection,
                  kDestroyAttributes},
        Complaint{"MutexDestroyMutex", PosixCall::mutexDestroy, makeMutex, kDestroyMutex},
        Complaint{"MutexDestroyAttributes", PosixCall::mutexattrDestroy, makeMutex,
                  kDestroyAttributes},
        Complaint{"EventDestroyMutex", PosixCall::mutexDestroy, makeEvent, kDestroyMutex},
        Complaint{"EventDestroyCondition", PosixCall::condDestroy, makeEvent, kDestroyCondition},
        Complaint{"SemaphoreDestroyMutex", PosixCall::mutexDestroy, makeSemaphore, kDestroyMutex},
        Complaint{"SemaphoreDestroyCondition", PosixCall::condDestroy, makeSemaphore,
                  kDestroyCondition}),
    nameOfRow);

using Calls = std::vector<PosixCall>;

TEST(SyncClasses, AreMadeAndDestroyedInTheirOrder) {
    using enum PosixCall;
    const Calls ofLock{mutexattrInit, mutexattrSettype, mutexInit, mutexDestroy, mutexattrDestroy};
    const Calls ofMonitor{mutexInit, condInit, mutexDestroy, condDestroy};
    EXPECT_EQ(callsWithin(makeCriticalSection), ofLock);
    EXPECT_EQ(callsWithin(makeMutex), ofLock);
    EXPECT_EQ(callsWithin(makeEvent), ofMonitor);
    EXPECT_EQ(callsWithin(makeSemaphore), ofMonitor);
}

template <class Class>
constexpr bool kNeitherCopiedNorAssigned =
    !std::is_copy_constructible_v<Class> && !std::is_copy_assignable_v<Class> &&
    !std::is_move_constructible_v<Class> && !std::is_move_assignable_v<Class>;

TEST(SyncClasses, AreNeitherCopiedNorAssigned) {
    EXPECT_TRUE(kNeitherCopiedNorAssigned<UCriticalSection>);
    EXPECT_TRUE(kNeitherCopiedNorAssigned<UAutoSync>);
    EXPECT_TRUE(kNeitherCopiedNorAssigned<UEvent>);
    EXPECT_TRUE(kNeitherCopiedNorAssigned<UMutex>);
    EXPECT_TRUE(kNeitherCopiedNorAssigned<USemaphore>);
}

TEST(SyncClasses, OnlyMutexAndSemaphoreAreDestroyedThroughTheirTables) {
    EXPECT_FALSE(std::is_polymorphic_v<UCriticalSection>);
    EXPECT_FALSE(std::is_polymorphic_v<UAutoSync>);
    EXPECT_FALSE(std::is_polymorphic_v<UEvent>);
    EXPECT_TRUE(std::has_virtual_destructor_v<UMutex>);
    EXPECT_TRUE(std::has_virtual_destructor_v<USemaphore>);
}

TEST(SyncClasses, AGuardIsTwoPointers) { EXPECT_EQ(sizeof(UAutoSync), 2 * sizeof(void*)); }

}  // namespace
