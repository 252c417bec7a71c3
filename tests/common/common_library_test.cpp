// The life of the process's log object, seen from before the first static object to after the last.

#include "UCommonLibrary.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <type_traits>

#include "FormattedLog.h"
#include "item_log.h"

namespace {

// Made before every other static object of the program and destroyed after them. A thread of its
// logs as soon as there is a log, while static construction goes on.
struct FirstAndLast {
    FirstAndLast() : wasNullFirst(errorLog == nullptr) {
        std::thread([this] {
            IUErrorLog* log = nullptr;
            while ((log = errorLog) == nullptr) std::this_thread::yield();
            log->WriteErrorStr("first\n");
            hasLogged = true;
            hasLogged.notify_all();
        }).detach();
    }
    ~FirstAndLast() {
        if (errorLog != nullptr) _exit(1);
    }

    const bool wasNullFirst;
    std::atomic<bool> hasLogged{false};
};
FirstAndLast firstAndLast __attribute__((init_priority(101)));

TEST(CommonLibrary, MayBeUsedByAThreadWhileStaticObjectsAreMade) {
    firstAndLast.hasLogged.wait(false);
    EXPECT_TRUE(firstAndLast.wasNullFirst) << "null until the library's object is made";
}

TEST(CommonLibrary, PublishesAFileLogThatIsClosed) {
    ASSERT_NE(errorLog, nullptr);
    EXPECT_NE(dynamic_cast<UFileErrorLog*>(static_cast<IUErrorLog*>(errorLog)), nullptr);
    EXPECT_EQ(errorLog->GetLogLevel(), 1);
    EXPECT_STREQ(errorLog->GetLogName(), "");
    EXPECT_EQ(errorLog->WriteErrorStr("text\n"), -1);
}

TEST(CommonLibrary, IsNotPolymorphicAndBeginsWithTheLog) {
    EXPECT_FALSE(std::is_polymorphic_v<UCommonLibrary>);
    EXPECT_EQ(sizeof(UCommonLibrary), sizeof(UFileErrorLog));
}

TEST(CommonLibrary, SecondOneLeavesThePointerAlone) {
    IUErrorLog* const before = errorLog;
    {
        UCommonLibrary second;
        second.releaseResources();
        EXPECT_EQ(errorLog, before);
    }
    errorLog = before;
}

TEST(CommonLibrary, PublishesItsLogWhenThereIsNoneAndTakesItBack) {
    IUErrorLog* const before = errorLog;
    errorLog = nullptr;
    {
        UCommonLibrary other;
        EXPECT_EQ(errorLog, static_cast<IUErrorLog*>(&other.log()));
    }
    EXPECT_EQ(errorLog, nullptr);
    errorLog = before;
}

__attribute__((format(printf, 2, 3))) void writeFormat(IUErrorLog& log, const char* format, ...) {
    va_list args;
    va_start(args, format);
    writeFormatted(log, format, args);
    va_end(args);
}

// The user's folder of logs need not be there; the file is made where the test wants it.
TEST(CommonLibrary, FormatsForItsOwnLog) {
    char folder[] = "/tmp/common_library-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    setenv("HOME", folder, 1);
    const std::string path = folder + std::string("/own.log");
    ASSERT_EQ(errorLog->Open(path.c_str(), "a"), 0);
    writeFormat(*errorLog, "[%s] %d %5d\n", "text", 5, 6);
    errorLog->Close();
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(text.ends_with(", 0,,,, [text] 5     6\n")) << text;
    std::filesystem::remove_all(folder);
}

TEST(CommonLibrary, FormatsForAnotherLog) {
    ItemLog log;
    writeFormat(log, "[%s] %d\n", "text", 5);
    writeFormat(log, "%5d\n", 6);
    writeFormat(log, "%s", "");
    EXPECT_THAT(log.items(), testing::ElementsAre("0,,,, [text] 5\n", "0,,,,     6\n", "0,,,, "));
}

TEST(CommonLibrary, PointerIsNullAfterStaticDestruction) {
    EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
}

// Threads log as soon as there is a log and until the program ends. They are started in a program
// of their own: a copy of one that already had a thread may not start others.
TEST(CommonLibrary, ThreadsMayLogUntilTheyAreJoinedAtExit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static std::atomic<bool> done{false};
            static std::thread threads[4];
            for (std::thread& thread : threads) {
                thread = std::thread([] {
                    while (!done.load()) {
                        if (IUErrorLog* const log = errorLog) log->WriteErrorStr("text\n");
                    }
                });
            }
            std::atexit([] {
                done = true;
                for (std::thread& thread : threads) thread.join();
            });
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
