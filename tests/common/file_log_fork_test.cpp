// A child that logs, forked while other threads log.

#include "ForkHooks.h"

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <thread>

#include "UCommonLibrary.h"
#include "file_log_home.h"

namespace {

class LogAcrossFork : public FileLogTest {
  protected:
    // Calls `body` in a child that ends with status 0 afterwards; a child that hangs is ended by a
    // signal. @return the child's id, or -1 when it ended otherwise.
    template <typename Body>
    static pid_t inChild(Body body) {
        prepareLogForFork();
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            resumeLogInChild();
            body();
            _exit(0);
        }
        resumeLogInParent();
        int status = -1;
        if (waitpid(child, &status, 0) != child) return -1;
        return status == 0 ? child : -1;
    }
};

// The process's own log, which the hooks concern, in a file of this test's.
class ProcessLogAcrossFork : public LogAcrossFork {
  protected:
    ProcessLogAcrossFork() {
        processLog().setParam("module_name", "nevo");
        EXPECT_EQ(processLog().Open(path().c_str(), "a"), 0);
    }
    ~ProcessLogAcrossFork() override { processLog().Close(); }

    static IUErrorLog& processLog() { return *errorLog; }
};

TEST_F(ProcessLogAcrossFork, ChildWritesWithTheParentsProcessIdAndItsOwnThreadId) {
    processLog().WriteErrorStr("parent\n");
    const pid_t child = inChild([] { processLog().WriteErrorStr("child\n"); });
    ASSERT_GT(child, 0);
    processLog().WriteErrorStr("parent\n");
    const std::vector<LogLine> all = lines();
    const LogLine& line = all.at(all.size() - 2);
    EXPECT_EQ(line.item, "0,,,, child");
    EXPECT_EQ(line.processId, getpid());
    EXPECT_EQ(line.threadId, child) << "a process's first thread bears its id";
    EXPECT_EQ(all.back().item, "0,,,, parent");
    EXPECT_EQ(all.back().threadId, all.at(all.size() - 3).threadId);
}

// The zone's own clock is not asked in the child: it may be locked by a thread that is not there.
TEST_F(ProcessLogAcrossFork, ChildKeepsTheTimeZone) {
    setenv("TZ", "XYZ-05:30", 1);
    tzset();
    const std::time_t before = std::time(nullptr);
    ASSERT_GT(inChild([] {
                  // Another second than any that the parent knows.
                  const std::time_t known = std::time(nullptr);
                  while (std::time(nullptr) == known) usleep(1000);
                  processLog().WriteErrorStr("child\n");
              }),
              0);
    const std::time_t after = std::time(nullptr);
    const std::string text = bytesOf(path());
    const std::string line = text.substr(text.rfind('\n', text.size() - 2) + 1);
    bool found = false;
    for (std::time_t second = before; second <= after; ++second) {
        std::tm local{};
        localtime_r(&second, &local);
        char expected[32];
        std::strftime(expected, sizeof expected, "%Y-%m-%d,%H:%M:%S:", &local);
        if (expected[11] == '0') expected[11] = ' ';
        found = found || line.rfind(expected, 0) == 0;
    }
    EXPECT_TRUE(found) << line;
    unsetenv("TZ");
    tzset();
}

TEST_F(ProcessLogAcrossFork, ChildMayRotateOpenAndClose) {
    writeSettings("log_file_size=1000\n");
    ASSERT_GT(inChild([&] {
                  for (int i = 0; i < 200; ++i) processLog().WriteErrorStr("child\n");
                  processLog().Close();
                  processLog().setParam("module_name", "child");
                  if (processLog().Open(path().c_str(), "a") != 0) _exit(3);
                  processLog().WriteErrorStr("child\n");
              }),
              0);
}

TEST_F(ProcessLogAcrossFork, NoChildHangsWhileThreadsRotateTheLog) {
    writeSettings("log_file_size=1000\n");
    processLog().Close();
    ASSERT_EQ(processLog().Open(path().c_str(), "a"), 0);
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&done] {
            while (!done.load()) {
                processLog().WriteErrorStr("thread\n");
                std::this_thread::yield();
            }
        });
    }
    threads.emplace_back([&done] {
        while (!done.load()) processLog().setParam("module_name", "renamed");
    });
    // A log object of its own, whose lock the hooks do not know.
    threads.emplace_back([&] {
        UFileErrorLog other;
        other.Open((home() + "/other.log").c_str(), "a");
        while (!done.load()) other.WriteErrorStr("thread\n");
    });
    int ended = 0;
    // Few forks: each copies a process. The threads write all the while.
    constexpr int kForks = 300;
    for (int i = 0; i < kForks; ++i) {
        if (inChild([] { processLog().WriteErrorStr("child\n"); }) > 0) ++ended;
    }
    done = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ended, kForks);
}

}  // namespace
