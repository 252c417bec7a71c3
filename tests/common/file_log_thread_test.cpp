// Many threads at one log: nothing is lost but by what rotation drops, and no line is torn.

#include <unistd.h>

#include <atomic>
#include <functional>
#include <map>
#include <thread>

#include "file_log_home.h"
#include "on_threads.h"

namespace {

class FileLogThreads : public FileLogTest {
  protected:
    static constexpr int kWriters = 8;
    static constexpr int kCount = kThreadSteps / kWriters;  // items of each writer

    // Runs `writer(number)` on eight threads, and each of `others` again and again until then.
    static void run(const std::function<void(int)>& writer,
                    const std::vector<std::function<void()>>& others = {}) {
        std::atomic<bool> done{false};
        std::vector<std::thread> background;
        for (const auto& step : others) {
            background.emplace_back([&done, step] {
                while (!done.load()) step();
            });
        }
        std::vector<std::thread> writers;
        for (int i = 0; i < kWriters; ++i) writers.emplace_back(writer, i);
        for (std::thread& thread : writers) thread.join();
        done = true;
        for (std::thread& thread : background) thread.join();
    }

    void writeNumbered(int writer) {
        for (int i = 0; i < kCount; ++i) log.WriteLog("w%d n%d %s\n", writer, i, kFilling);
    }

    // The writers' numbers in the order of the files, each writer's by itself.
    std::map<int, std::vector<int>> numbersOf(std::initializer_list<std::string> files) {
        std::map<int, std::vector<int>> numbers;
        for (const std::string& file : files) {
            for (const std::string& item : itemsOf(file)) {
                int writer = 0;
                int number = 0;
                int end = 0;
                if (std::sscanf(item.c_str(), "0,,,, w%d n%d %n", &writer, &number, &end) < 2) {
                    continue;
                }
                EXPECT_EQ(item.substr(static_cast<std::size_t>(end)), kFilling);
                numbers[writer].push_back(number);
            }
        }
        return numbers;
    }

    static constexpr char kFilling[] = "the quick brown fox jumps over the lazy dog";
};

void expectRun(const std::vector<int>& numbers, int last) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ASSERT_EQ(numbers[i], last - static_cast<int>(numbers.size() - 1 - i));
    }
}

TEST_F(FileLogThreads, OneRotationLosesNothing) {
    writeSettings("log_file_size=7500000\n");
    open();
    run([&](int writer) { writeNumbered(writer); });
    ASSERT_TRUE(std::filesystem::exists(oldPath()));
    const auto numbers = numbersOf({oldPath(), path()});
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(kWriters));
    for (const auto& [writer, its] : numbers) {
        EXPECT_EQ(its.size(), static_cast<std::size_t>(kCount));
        expectRun(its, kCount - 1);
    }
}

TEST_F(FileLogThreads, ManyRotationsLoseWholeOldFilesOnly) {
    writeSettings("log_file_size=100000\n");
    open();
    run([&](int writer) { writeNumbered(writer); });
    int kept = 0;
    for (const auto& [writer, its] : numbersOf({oldPath(), path()})) {
        expectRun(its, its.empty() ? 0 : its.back());
        kept += static_cast<int>(its.size());
    }
    EXPECT_GT(kept, 100000 / 150) << "the old file holds at least the limit";
}

TEST_F(FileLogThreads, LevelAndRotationChangeUnderEightWriters) {
    writeSettings("log_file_size=1000\n");
    open();
    run([&](int writer) { writeNumbered(writer); },
        {[&, level = 0]() mutable { log.SetLogLevel(30 + level++ % 34); }});
    for (const auto& [writer, its] : numbersOf({oldPath(), path()})) {
        expectRun(its, its.back());
    }
}

TEST_F(FileLogThreads, OpenCloseAndModuleNameChangeUnderWriters) {
    open();
    const std::string other = home() + "/other.log";
    run(
        [&](int writer) {
            for (int i = 0; i < kCount; ++i) {
                log.WriteLogStr(writer, "text\n");
                if (i % 100 == 0) log.GetLogName();
            }
        },
        {[&, i = 0]() mutable {
             log.setParam("module_name", ++i % 2 != 0 ? "nevo" : "a longer one");
         },
         [&] { log.Open(path().c_str(), "a"); }, [&] { log.Open(other.c_str(), "a"); },
         [&] {
             log.Close();
             usleep(1000);
         }});
    lines();
    linesOf(other);
}

TEST_F(FileLogThreads, BytesAndTextsDoNotMix) {
    constexpr unsigned int kBytes = 100;
    writeSettings("log_file_size=100000000\n");
    open();
    run([&](int writer) {
        std::vector<unsigned char> data(kBytes, static_cast<unsigned char>('a' + writer));
        for (int i = 0; i < kCount; ++i) log.WriteLogByte("bytes ", data.data(), kBytes);
    });
    int found = 0;
    for (const std::string& item : items()) {
        if (item.rfind("4,,,, bytes ", 0) != 0) continue;
        ++found;
        EXPECT_EQ(item.substr(12), std::string(kBytes, item[12]));
    }
    EXPECT_EQ(found, kWriters * kCount);
}

TEST_F(FileLogThreads, TwoLogsAtOnce) {
    open();
    UFileErrorLog other;
    ASSERT_EQ(other.Open((home() + "/other.log").c_str(), "a"), 0);
    run([&](int writer) {
        UFileErrorLog& mine = writer % 2 == 0 ? log : other;
        for (int i = 0; i < kCount; ++i) mine.WriteErrorStr("text\n");
    });
    constexpr std::size_t kItems = kWriters / 2 * kCount;
    EXPECT_EQ(lines().size(), kItems + 7);
    EXPECT_EQ(linesOf(home() + "/other.log").size(), kItems + 7);
}

}  // namespace
