// Formatting, exceptions and debug output from several threads at once: meant for the thread
// sanitizer.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "AfxDebug.h"
#include "UGuarded.h"
#include "URaise.h"
#include "bare_log.h"
#include "on_threads.h"
#include "text_of.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = kThreadSteps / kThreads;

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

// While it lives, what is written to standard output comes here.
class OutputPipe {
  public:
    OutputPipe() {
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        m_output = ends[0];
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
    }
    ~OutputPipe() {
        restore();
        close(m_output);
    }
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    // Gives standard output back, which ends what comes here.
    void restore() {
        if (m_usual < 0) return;
        dup2(m_usual, STDOUT_FILENO);
        close(std::exchange(m_usual, -1));
    }

    // All that comes until the end.
    std::string read() const {
        std::string text;
        char piece[4096];
        for (ssize_t got = 0; (got = ::read(m_output, piece, sizeof piece)) > 0;) {
            text.append(piece, static_cast<std::size_t>(got));
        }
        return text;
    }

  private:
    int m_usual = dup(STDOUT_FILENO);
    int m_output = -1;
};

// The lines of `text` in an order that does not depend on who wrote first.
std::vector<std::string> sortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(FormattingThreads, TraceAndConvertWideTextAndReadTheLocaleAtOnce) {
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    char prefix[32];
    std::snprintf(prefix, sizeof prefix, "[%4d] ", static_cast<int>(getpid()));
    std::string output;
    std::string expected;
    for (int i = 0; i < kThreads * kRounds; ++i) {
        expected += prefix + std::to_string(i) + "\n";
    }
    std::fflush(stdout);
    OutputPipe pipe;
    std::thread reader([&] { output = pipe.read(); });
    g_dwDebugFlags = 1;
    std::atomic<int> wrong{0};  // counted, for a failure is told on standard output
    onThreads(kThreads + 1, [&](int thread) {
        if (thread == kThreads) {
            for (int i = 0; i < kThreads * kRounds; ++i) {
                if (std::setlocale(LC_ALL, nullptr) != locale) ++wrong;
            }
            return;
        }
        for (int i = 0; i < kRounds; ++i) {
            const int number = thread * kRounds + i;
            AfxTrace("%d\n", number);
            if (textOf(createString(L"wide")) != "wide") ++wrong;
            if (textOf(createString(number)) != std::to_string(number)) ++wrong;
        }
    });
    g_dwDebugFlags = 2;
    pipe.restore();
    reader.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(sortedLines(output), sortedLines(expected));
}

}  // namespace
