// The calls of macOS that other systems are given under their own names.

#include <gtest/gtest.h>
#include <mach-o/dyld.h>
#include <pthread.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

namespace {

TEST(ExecutablePath, NamesTheRunningProgram) {
    char path[4096];
    std::uint32_t size = sizeof path;
    ASSERT_EQ(_NSGetExecutablePath(path, &size), 0);
    EXPECT_TRUE(std::filesystem::equivalent(path, "/proc/self/exe")) << path;
    EXPECT_TRUE(std::string(path).ends_with("/platform_calls_test")) << path;
}

TEST(ExecutablePath, OfTooSmallABufferIsTheSizeNeeded) {
    char path[4096];
    std::uint32_t size = 0;
    ASSERT_EQ(_NSGetExecutablePath(path, &size), -1);
    const std::uint32_t needed = size;
    std::uint32_t oneLess = needed - 1;
    EXPECT_EQ(_NSGetExecutablePath(path, &oneLess), -1);
    EXPECT_EQ(oneLess, needed);
    ASSERT_EQ(_NSGetExecutablePath(path, &size), 0);
    EXPECT_EQ(std::string(path).size() + 1, needed);
}

std::uint64_t ownId() {
    std::uint64_t id = 0;
    EXPECT_EQ(pthread_threadid_np({}, &id), 0);
    return id;
}

TEST(ThreadId, IsTheSameForOneThreadAndAnotherForAnother) {
    const std::uint64_t mine = ownId();
    EXPECT_NE(mine, 0u);
    EXPECT_EQ(ownId(), mine);
    std::uint64_t other = 0;
    std::thread([&other] { other = ownId(); }).join();
    EXPECT_NE(other, mine);
}

TEST(ThreadId, TheCallingThreadMayNameItself) {
    std::uint64_t id = 0;
    EXPECT_EQ(pthread_threadid_np(pthread_self(), &id), 0);
    EXPECT_EQ(id, ownId());
}

TEST(ThreadId, NeedsAPlaceForTheId) {
    EXPECT_EQ(pthread_threadid_np(pthread_self(), nullptr), EINVAL);
}

}  // namespace
