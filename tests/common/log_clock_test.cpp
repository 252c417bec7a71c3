// Lines at chosen moments: this program has a clock, a process id and a thread id of its own.

#include <pthread.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <thread>

#include "UOutputErrorLog.h"
#include "file_log_home.h"
#include "row_name.h"

namespace {

thread_local timeval t_now{1709622489, 10999};  // 2024-03-05 07:08:09
thread_local bool t_zoneFails = false;
thread_local int t_conversions = 0;
uint64_t g_threadId = 77001;

}  // namespace

extern "C" {

pid_t getpid() noexcept { return 4321; }

int gettimeofday(timeval* now, void* /*zone*/) noexcept {
    *now = t_now;
    return 0;
}

int pthread_threadid_np(pthread_t /*thread*/, uint64_t* id) {
    *id = g_threadId;
    return 0;
}

// Universal time is the local time here.
tm* localtime_r(const time_t* second, tm* local) noexcept {
    ++t_conversions;
    if (!t_zoneFails) return gmtime_r(second, local);
    errno = EOVERFLOW;
    return nullptr;
}
}

namespace {

class LogClock : public FileLogTest {
  protected:
    LogClock() {
        log.setParam("module_name", "nevo_plugin");
        open();
    }
    ~LogClock() override { t_zoneFails = false; }

    // The line of an item written at this moment. A new thread has no memory of other moments.
    std::string lineAt(timeval now) {
        const std::size_t before = bytesOf(path()).size();
        std::thread([&] {
            t_now = now;
            log.WriteErrorStr("[LaunchVPN] pipe error='24'\n");
        }).join();
        return bytesOf(path()).substr(before);
    }
};

TEST_F(LogClock, WholeLineIsAsDocumented) {
    EXPECT_EQ(lineAt({1709622489, 10999}),
              "2024-03-05, 7:08:09:010, 4321,77001,nevo_plugin, 0,,,, [LaunchVPN] pipe "
              "error='24'\n");
}

struct Moment {
    const char* rule;
    timeval now;
    const char* text;
};

class LogMomentText : public LogClock, public testing::WithParamInterface<Moment> {};

TEST_P(LogMomentText, IsDateAndTimeToTheMillisecond) {
    const std::string line = lineAt(GetParam().now);
    EXPECT_EQ(line.substr(0, line.find(", 4321")), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Moments, LogMomentText,
    testing::Values(
        Moment{"MicrosecondsAreCut", {1709622489, 999999}, "2024-03-05, 7:08:09:999"},
        Moment{"LessThanAMillisecond", {1709622489, 999}, "2024-03-05, 7:08:09:000"},
        Moment{"Midnight", {1709596800, 0}, "2024-03-05, 0:00:00:000"},
        Moment{"TwoDigitHour", {1735689599, 500000}, "2024-12-31,23:59:59:500"},
        Moment{"LeapDay", {1709208000, 0}, "2024-02-29,12:00:00:000"},
        Moment{"TheFirstSecond", {0, 0}, "1970-01-01, 0:00:00:000"},
        Moment{"BeforeTheFirstSecond", {-1, 1000}, "1969-12-31,23:59:59:001"},
        Moment{"LongAgo", {-62135596800, 0}, "0001-01-01, 0:00:00:000"},
        Moment{"YearOfFiveDigits", {253402300800, 0}, "10000-01-01, 0:00:00:000"},
        Moment{"LastYearThatFits", {67768036191676799, 999999}, "2147485547-12-31,23:59:59:999"}),
    nameOfRow);

TEST_F(LogClock, SteppedBackClockIsFollowed) {
    const auto wrote = [&](time_t second) {
        t_now = {second, 0};
        log.WriteErrorStr("text\n");
        const std::string text = bytesOf(path());
        return text.substr(text.rfind('\n', text.size() - 2) + 1, 20);
    };
    EXPECT_EQ(wrote(1709622489), "2024-03-05, 7:08:09:");
    EXPECT_EQ(wrote(1709622490), "2024-03-05, 7:08:10:");
    EXPECT_EQ(wrote(1709618889), "2024-03-05, 6:08:09:");
}

TEST_F(LogClock, SecondIsConvertedOnce) {
    t_now = {1700000000, 0};
    log.WriteErrorStr("text\n");
    t_conversions = 0;
    for (int i = 1; i < 100; ++i) {
        t_now.tv_usec = i * 10000;
        log.WriteErrorStr("text\n");
    }
    EXPECT_EQ(t_conversions, 0);
    ++t_now.tv_sec;
    log.WriteErrorStr("text\n");
    EXPECT_EQ(t_conversions, 1);
}

struct ThreadId {
    const char* rule;
    uint64_t id;
    const char* text;
};

class LogThreadId : public LogClock, public testing::WithParamInterface<ThreadId> {
  protected:
    LogThreadId() { g_threadId = GetParam().id; }
    ~LogThreadId() override { g_threadId = 77001; }
};

TEST_P(LogThreadId, ShowsItsLow32BitsSigned) {
    const std::string line = lineAt({1709622489, 0});
    const std::string start = "2024-03-05, 7:08:09:000, 4321,";
    ASSERT_EQ(line.substr(0, start.size()), start);
    EXPECT_EQ(line.substr(start.size(), line.find(',', start.size()) - start.size()),
              GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Ids, LogThreadId,
                         testing::Values(ThreadId{"Small", 1, "1"},
                                         ThreadId{"Largest", 0x7FFFFFFF, "2147483647"},
                                         ThreadId{"SignBit", 0x80000000, "-2147483648"},
                                         ThreadId{"AllBits", 0xFFFFFFFF, "-1"},
                                         ThreadId{"Beyond", 0x100000005, "5"},
                                         ThreadId{"AllOf64", UINT64_MAX, "-1"}),
                         nameOfRow);

// Nothing is written without a header, but the write is made and counts.
TEST_F(LogClock, UnknownLocalTimeIsAFailedWrite) {
    writeSettings("default_log_level=31\nlog_file_size=0\n");
    log.Close();
    ASSERT_EQ(log.Open(path().c_str(), "w"), 0);
    const std::string before = bytesOf(path());
    unsigned char data[] = {'a'};
    t_zoneFails = true;
    t_now.tv_sec += 1000;
    EXPECT_EQ(log.WriteLogItem("text\n"), -1);
    EXPECT_EQ(log.WriteLogByte("text", data, 1), -1);
    EXPECT_EQ(bytesOf(path()), before);
    EXPECT_EQ(log.WriteLogByte(data, 1), 1) << "it has no header";
    EXPECT_EQ(bytesOf(path()), before + "a\n\n");
    // Seven items began the first run, six this one, and three writes were made: fifty
    // bring the next look.
    for (int i = 7 + 6 + 3; i < 50; ++i) {
        EXPECT_FALSE(std::filesystem::exists(oldPath()));
        log.WriteLogItem("text\n");
    }
    EXPECT_TRUE(std::filesystem::exists(oldPath()));
}

TEST_F(LogClock, OutputShowsTheTimeAndTheWholeThreadId) {
    g_threadId = 0x100000005;
    std::string shown;
    std::thread([&] {
        t_now = {1709622489, 10999};
        testing::internal::CaptureStdout();
        UOutputErrorLog().WriteLogItem("abc");
        std::fflush(stdout);
        shown = testing::internal::GetCapturedStdout();
    }).join();
    g_threadId = 77001;
    EXPECT_EQ(shown, " 7:08:09:010, (4294967301)  abc\r\n\n");
}

}  // namespace
