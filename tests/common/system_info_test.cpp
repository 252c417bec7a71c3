#include "SystemInfo.h"

#include <gmock/gmock.h>
#include <sys/time.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "Features.h"
#include "text_of.h"

namespace {

unsigned int millisecondsNow() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return static_cast<unsigned int>(now.tv_sec * 1000 + now.tv_usec / 1000);
}

const unsigned int programStart = millisecondsNow();

TEST(GetTickCount, IsTheTimeOfDayInMilliseconds) {
    const unsigned int before = millisecondsNow();
    const unsigned int ticks = GetTickCount();
    const unsigned int after = millisecondsNow();
    EXPECT_LE(ticks - before, after - before);
}

TEST(GetCurrentProcessId, IsThePlatforms) {
    EXPECT_EQ(GetCurrentProcessId(), static_cast<unsigned int>(getpid()));
}

std::string bytesOf(unsigned long long number, int count) {
    std::string text;
    for (int i = 0; i < count; ++i, number >>= 8) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned int>(number & 255));
        text += digits;
    }
    return text;
}

unsigned long long countOf(const std::string& id) {
    return __builtin_bswap64(std::stoull(id.substr(18), nullptr, 16));
}

TEST(GenerateId, IsProcessIdStartTickAndCount) {
    const std::string id = textOf(SGenerateID());
    ASSERT_THAT(id, testing::MatchesRegex("[0-9a-f]{8}-[0-9a-f]{8}-[0-9a-f]{16}"));
    EXPECT_EQ(id.substr(0, 8), bytesOf(static_cast<unsigned int>(getpid()), 4));
    const std::string next = textOf(SGenerateID());
    EXPECT_EQ(next.substr(0, 18), id.substr(0, 18));
    EXPECT_EQ(countOf(next), countOf(id) + 1);
}

TEST(GenerateId, NamesTheTimeOfTheFirstCall) {
    const unsigned int now = GetTickCount();
    const unsigned long tick = std::stoul(textOf(SGenerateID()).substr(9, 8), nullptr, 16);
    EXPECT_LE(now - __builtin_bswap32(static_cast<unsigned int>(tick)), now - programStart);
}

TEST(GenerateId, IsNeverTheSameOnManyThreads) {
    constexpr std::size_t kEach = 125000;
    std::vector<std::vector<unsigned long long>> counts(8);
    std::vector<std::thread> threads;
    for (auto& mine : counts) {
        threads.emplace_back([&mine] {
            for (std::size_t i = 0; i < kEach; ++i) mine.push_back(countOf(textOf(SGenerateID())));
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<unsigned long long> all;
    for (const auto& mine : counts) all.insert(all.end(), mine.begin(), mine.end());
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all.size(), counts.size() * kEach);
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

TEST(ErrorDescription, IsTheCLibrarysText) {
    for (const int error : {0, ENOENT, EACCES, ENOMEM, ETIMEDOUT, 9999, -1}) {
        EXPECT_EQ(textOf(SGetErrorDescription(static_cast<unsigned int>(error))),
                  std::strerror(error));
    }
}

TEST(LastError, DescribesTheCallingThreadsErrorNumber) {
    const std::string expected = std::strerror(EEXIST);
    errno = EEXIST;
    EXPECT_EQ(textOf(SGetLastError()), expected);
}

TEST(EnvironmentVariable, IsItsValueWhateverItsLength) {
    for (const std::size_t length : {1u, 999u, 1000u, 1001u, 100000u}) {
        const std::string value(length, 'v');
        setenv("ZERVA_TEST_VALUE", value.c_str(), 1);
        EXPECT_EQ(textOf(SGetEnvironmentVariable("ZERVA_TEST_VALUE", "default")), value);
    }
}

TEST(EnvironmentVariable, IsTheDefaultWhenUnsetOrEmpty) {
    unsetenv("ZERVA_TEST_VALUE");
    EXPECT_EQ(textOf(SGetEnvironmentVariable("ZERVA_TEST_VALUE", "default")), "default");
    setenv("ZERVA_TEST_VALUE", "", 1);
    EXPECT_EQ(textOf(SGetEnvironmentVariable("ZERVA_TEST_VALUE", "default")), "default");
    EXPECT_EQ(textOf(SGetEnvironmentVariable("ZERVA_TEST_VALUE", nullptr)), "");
    EXPECT_EQ(textOf(SGetEnvironmentVariable(nullptr, "default")), "default");
}

TEST(SystemInfo, IsABlockOfLinesBetweenRules) {
    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    const std::string rule(74, '=');
    EXPECT_EQ(textOf(SGetSystemInfo(0)),
              rule + "\nSystem: " + system.sysname + "\nNode name: " + system.nodename +
                  "\nRelease: " + system.release + "\nKernel version: " + system.version +
                  "\nModel: " + system.machine + "\n" + rule + "\n");
}

TEST(Features, AreFixed) {
    EXPECT_STREQ(zerva::Features::UserAgentString::GetUserAgentString(),
                 "Mozilla/5.0 (compatible; MSIE 10.0; Windows NT 6.1; Trident/6.0; Zerva Client)");
    EXPECT_TRUE(zerva::Features::IsOptimizedTunnelCompressionOn());
    EXPECT_TRUE(zerva::Features::IsTlsPingOn());
    EXPECT_EQ(zerva::Features::DTLSSendTimeout(), 3000000u);
    EXPECT_EQ(zerva::Features::DTLSRecvTimeout(), 3000000u);
}

}  // namespace
