#include "UOutputErrorLog.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>

namespace {

using testing::MatchesRegex;

// What `write` prints on standard output.
template <typename Write>
std::string printed(Write write) {
    testing::internal::CaptureStdout();
    write();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

std::string printedItem(const char* text) {
    UOutputErrorLog log;
    return printed([&] { EXPECT_EQ(log.WriteLogItem(text), 0); });
}

// What stands in front of an item's text.
std::string prefix() {
    uint64_t thread = 0;
    pthread_threadid_np(pthread_t{}, &thread);
    return "[ 12][0-9]:[0-5][0-9]:[0-6][0-9]:[0-9][0-9][0-9], \\(" + std::to_string(thread) +
           "\\)  ";
}

TEST(OutputErrorLog, EndsAnItemThatHasNoEndAndTheOutputEndsItAgain) {
    EXPECT_THAT(printedItem("abc"), MatchesRegex(prefix() + "abc\r\n\n"));
}

TEST(OutputErrorLog, AddsNoEndToAnItemThatHasOne) {
    EXPECT_THAT(printedItem("abc\n"), MatchesRegex(prefix() + "abc\n\n"));
}

TEST(OutputErrorLog, EndsAnItemThatEndsWithACarriageReturn) {
    EXPECT_THAT(printedItem("abc\r"), MatchesRegex(prefix() + "abc\r\r\n\n"));
}

TEST(OutputErrorLog, EmptyAndNullItemsAreEndedToo) {
    EXPECT_THAT(printedItem(""), MatchesRegex(prefix() + "\r\n\n"));
    EXPECT_THAT(printedItem(nullptr), MatchesRegex(prefix() + "\r\n\n"));
}

TEST(OutputErrorLog, ItemIsNoFormat) {
    EXPECT_THAT(printedItem("100%n\n"), MatchesRegex(prefix() + "100%n\n\n"));
}

TEST(OutputErrorLog, ShowsTheThreadThatWrites) {
    std::thread([] {
        EXPECT_THAT(printedItem("abc\n"), MatchesRegex(prefix() + "abc\n\n"));
    }).join();
}

TEST(OutputErrorLog, WritersOfTheInterfaceEndHere) {
    UOutputErrorLog log;
    EXPECT_THAT(printed([&] { EXPECT_EQ(log.WriteLogStr(7, "abc\n"), 0); }),
                MatchesRegex(prefix() + "7,,,, abc\n\n"));
}

TEST(OutputErrorLog, HasNoFileAndTakesNoBytes) {
    UOutputErrorLog log;
    unsigned char data[] = {'a', 'b'};
    EXPECT_EQ(printed([&] {
                  EXPECT_EQ(log.Open("/tmp/never-made", "a"), 0);
                  EXPECT_EQ(log.WriteLogByte(data, 2), 0);
                  EXPECT_EQ(log.WriteLogByte("text", data, 2), 0);
                  EXPECT_EQ(log.Close(), 0);
              }),
              "");
    EXPECT_EQ(log.GetLogName(), nullptr);
    EXPECT_EQ(access("/tmp/never-made", F_OK), -1);
}

TEST(OutputErrorLog, ReturnsZeroWhenTheOutputIsFull) {
    EXPECT_EXIT(
        {
            UOutputErrorLog log;
            if (std::freopen("/dev/full", "w", stdout) == nullptr) _exit(2);
            _exit(log.WriteLogItem(std::string(100000, 'x').c_str()));
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
