#include "sigpipe_guard.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "unique_fd.h"

namespace {

// The writing end of a pipe that nobody reads any more.
UniqueFd brokenPipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    close(ends[0]);
    return UniqueFd(ends[1]);
}

bool isPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

bool isBlocked() {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, SIGPIPE) == 1;
}

void setBlocked(int how) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(how, &set, nullptr);
}

TEST(SigpipeGuard, AWriteThatNobodyReadsOnlyFails) {
    const UniqueFd pipe = brokenPipe();
    {
        const SigpipeGuard guard(pipe.get());
        EXPECT_EQ(write(pipe.get(), "x", 1), -1);
        EXPECT_EQ(errno, EPIPE);
    }
    EXPECT_FALSE(isBlocked());
    EXPECT_FALSE(isPending());
}

TEST(SigpipeGuard, KeepsTheErrorNumberOfTheWrite) {
    const UniqueFd pipe = brokenPipe();
    const auto writeGuarded = [&] {
        const SigpipeGuard guard(pipe.get());
        return write(pipe.get(), "x", 1);
    };
    errno = 0;
    EXPECT_EQ(writeGuarded(), -1);
    EXPECT_EQ(errno, EPIPE);
}

TEST(SigpipeGuard, EndsTheProtectionWithItself) {
    const UniqueFd pipe = brokenPipe();
    const pid_t child = fork();
    if (child == 0) {
        { const SigpipeGuard guard(pipe.get()); }
        [[maybe_unused]] const ssize_t never = write(pipe.get(), "x", 1);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGPIPE);
}

TEST(SigpipeGuard, LeavesAMaskThatBlockedTheSignalBefore) {
    setBlocked(SIG_BLOCK);
    const UniqueFd pipe = brokenPipe();
    {
        const SigpipeGuard guard(pipe.get());
        EXPECT_EQ(write(pipe.get(), "x", 1), -1);
    }
    EXPECT_TRUE(isBlocked());
    EXPECT_FALSE(isPending());
    setBlocked(SIG_UNBLOCK);
}

TEST(SigpipeGuard, LeavesASignalThatWasPendingBefore) {
    setBlocked(SIG_BLOCK);
    raise(SIGPIPE);
    const UniqueFd pipe = brokenPipe();
    {
        const SigpipeGuard guard(pipe.get());
        EXPECT_EQ(write(pipe.get(), "x", 1), -1);
    }
    EXPECT_TRUE(isPending());
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    int taken = 0;
    sigwait(&set, &taken);
    setBlocked(SIG_UNBLOCK);
}

TEST(SigpipeGuard, LeavesASuccessfulWriteAlone) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    const UniqueFd readEnd(ends[0]);
    const UniqueFd writeEnd(ends[1]);
    {
        const SigpipeGuard guard(writeEnd.get());
        EXPECT_EQ(write(writeEnd.get(), "x", 1), 1);
    }
    EXPECT_FALSE(isBlocked());
    EXPECT_FALSE(isPending());
}

}  // namespace
