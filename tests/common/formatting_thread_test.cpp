// Formatting, exceptions and debug output from several threads at once: meant for the thread
// sanitizer.

#include <gtest/gtest.h>

#include <atomic>

#include "AfxDebug.h"
#include "UGuarded.h"
#include "URaise.h"
#include "bare_log.h"
#include "on_threads.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 12500;

// Counts what is written, from any thread.
class CountingLog final : public BareLog {
  public:
    CountingLog() { errorLog = this; }
    ~CountingLog() override { errorLog = nullptr; }
    int WriteLogItem(const char* /*text*/) override { return ++m_count; }

    int count() const { return m_count; }

  private:
    std::atomic<int> m_count{0};
};

TEST(FormattingThreads, RaiseAndCatchAtOnceAndLoseNoRecord) {
    const CountingLog log;
    onThreads(kThreads, [](int thread) {
        for (int i = 0; i < kRounds; ++i) {
            EXPECT_EQ(UGuarded("work() - EXCEPTION",
                               [thread, i] { URaise("work()", "failed", thread, i); }),
                      -1);
        }
    });
    EXPECT_EQ(log.count(), 2 * kThreads * kRounds);
}

TEST(FormattingThreads, TraceAndConvertWideTextAtOnce) {
    g_dwDebugFlags = 0;
    onThreads(kThreads, [](int thread) {
        for (int i = 0; i < kRounds; ++i) {
            AfxTrace("%d\n", i);
            EXPECT_STREQ(createString(L"wide"), "wide");
            EXPECT_EQ(atoi(createString(thread * kRounds + i)), thread * kRounds + i);
        }
    });
    g_dwDebugFlags = 2;
}

}  // namespace
