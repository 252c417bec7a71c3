#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "child_process.h"
#include "launcher_fixture.h"

// Stopping: whatever the pid file names gets the signal.

namespace {

using testing::ElementsAre;

TEST_F(Launcher, StopSendsTermToTheProcessInThePidFileWhoeverItIs) {
    for (const char* name : {"nevo", "stranger"}) {
        ChildProcess process(name);
        writePidFile(std::to_string(process.pid()));
        EXPECT_EQ(stop(), -5);
        const int status = process.collect();
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), SIGTERM);
    }
    EXPECT_EQ(log.events(), std::vector<std::string>(2, "[LaunchVPN] ('text', '1')\n"));
}

TEST_F(Launcher, StopDoesNothingWithoutAPidFile) {
    installService("note");
    EXPECT_EQ(stop(), -5);
    EXPECT_EQ(LaunchVPN("text", -7), -5);
    EXPECT_EQ(serviceReport(), "");
    EXPECT_THAT(log.events(),
                ElementsAre("[LaunchVPN] ('text', '1')\n", "[LaunchVPN] ('text', '-7')\n"));
}

class HarmlessStop : public Launcher, public testing::WithParamInterface<const char*> {};

TEST_P(HarmlessStop, SignalsNobody) {
    ChildProcess bystander("bystander");
    writePidFile(GetParam());
    EXPECT_EQ(stop(), -5);
    EXPECT_EQ(kill(bystander.pid(), 0), 0);
    EXPECT_EQ(waitpid(bystander.pid(), nullptr, WNOHANG), 0);
}

INSTANTIATE_TEST_SUITE_P(Texts, HarmlessStop,
                         testing::Values("2147483647", "2147483648", "4294967297",
                                         "99999999999999999999", "-99999999999999999999"),
                         [](const auto& row) { return "Text" + std::to_string(row.index); });

volatile std::sig_atomic_t termsReceived = 0;

class StopOfOneself : public Launcher, public testing::WithParamInterface<const char*> {};

TEST_P(StopOfOneself, WithoutANumberSignalsTheOwnProcessGroup) {
    setpgid(0, 0);
    ASSERT_EQ(getpgrp(), getpid());
    ChildProcess member("member");
    termsReceived = 0;
    const auto previous = signal(SIGTERM, [](int) { termsReceived = termsReceived + 1; });
    writePidFile(GetParam());
    EXPECT_EQ(stop(), -5);
    EXPECT_EQ(termsReceived, 1);
    EXPECT_EQ(WTERMSIG(member.collect()), SIGTERM);
    signal(SIGTERM, previous);
}

INSTANTIATE_TEST_SUITE_P(Texts, StopOfOneself, testing::Values("", "abc", "0", "-0"),
                         [](const auto& row) { return "Text" + std::to_string(row.index); });

TEST_F(Launcher, StopWithMinusOneSignalsEverybodyElse) {
    ChildProcess one("one");
    ChildProcess other("other", ChildProcess::Group::kItsOwn);
    writePidFile("-1");
    EXPECT_EQ(stop(), -5);
    EXPECT_EQ(WTERMSIG(one.collect()), SIGTERM);
    EXPECT_EQ(WTERMSIG(other.collect()), SIGTERM);
}

TEST_F(Launcher, StopOfAProcessGroupReachesIt) {
    ChildProcess leader("leader", ChildProcess::Group::kItsOwn);
    writePidFile(std::to_string(-leader.pid()));
    EXPECT_EQ(stop(), -5);
    EXPECT_EQ(WTERMSIG(leader.collect()), SIGTERM);
}

}  // namespace
