// Locks used as they must not be: the platform notices, and the log says so.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "UCriticalSection.h"
#include "UMutex.h"
#include "record_log.h"

// The misuse is what is tested; everything else is still looked for.
extern "C" const char* __tsan_default_options() {
    return "report_mutex_bugs=0:report_destroy_locked=0";
}

namespace {

void onAnotherThread(auto action) { std::thread(action).join(); }

TEST(CriticalSection, LogsAnUnlockByAnotherThread) {
    const RecordLog log;
    UCriticalSection section;
    section.Lock();
    onAnotherThread([&] { section.Unlock(); });
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_sync, LINE, , pthread_mutex_unlock - failed to unlock, 1, Operation not "
              "permitted\n");
    section.Unlock();
    EXPECT_EQ(log.items().size(), 1u);
}

TEST(Mutex, RefusesAReleaseByAnotherThread) {
    const RecordLog log;
    UMutex mutex(true);
    onAnotherThread([&] { EXPECT_FALSE(mutex.Release()); });
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_sync, LINE, , pthread_mutex_unlock - failed to release mutex, 1, Operation "
              "not permitted\n");
    EXPECT_TRUE(mutex.Release());
    EXPECT_FALSE(mutex.Release());
}

template <class Lock>
void expectComplaintAboutDestroying(std::unique_ptr<Lock> held) {
    const RecordLog log;
    held.reset();
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_sync, LINE, , pthread_mutex_destroy - failed to destroy mutex, 16, Device or "
              "resource busy\n");
}

TEST(CriticalSection, LogsThatItIsDestroyedWhileHeld) {
    auto section = std::make_unique<UCriticalSection>();
    section->Lock();
    expectComplaintAboutDestroying(std::move(section));
}

TEST(Mutex, LogsThatItIsDestroyedWhileHeld) {
    expectComplaintAboutDestroying(std::make_unique<UMutex>(true));
}

}  // namespace
