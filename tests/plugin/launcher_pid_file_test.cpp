#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>

#include "child_process.h"
#include "launcher_fixture.h"
#include "sandbox_main.h"

// What the pid file says at a start, and whose process it names.

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST_F(Launcher, ALiveServiceIsNotStartedAgain) {
    installService("note");
    const ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    EXPECT_EQ(start(), -1);
    EXPECT_EQ(serviceReport(), "");
    EXPECT_EQ(log.events(), startLines("[LaunchVPN] nevo server already launched, pid='" +
                                       std::to_string(running.pid()) + "'\n"));
}

TEST_F(Launcher, AServiceThatNobodyHasCollectedCountsAsRunning) {
    installService("note");
    ChildProcess running("nevo");
    running.makeZombie();
    writePidFile(std::to_string(running.pid()));
    EXPECT_EQ(start(), -1);
}

class OtherName : public Launcher, public testing::WithParamInterface<const char*> {};

TEST_P(OtherName, OfTheProcessMeansThatTheServiceIsNotRunning) {
    installService("note exit=0");
    const ChildProcess stranger(GetParam());
    writePidFile(std::to_string(stranger.pid()));
    EXPECT_EQ(start(), 0);
    EXPECT_NE(serviceReport(), "");
    ASSERT_EQ(log.lines().size(), 3U);
    EXPECT_EQ(log.lines()[1], notOwner(stranger.pid()));
}

INSTANTIATE_TEST_SUITE_P(Names, OtherName,
                         testing::Values("nevo2", "Nevo", "NEVO", "nev", "nevo ", " nevo", "xnevo",
                                         "nevo-0123456789", "nevo-0123456789abcdef", "sleep"),
                         [](const auto& row) { return "Name" + std::to_string(row.index); });

struct PidText {
    const char* name;
    const char* text;
    int pid;  // as the log shows it; kSilent when nothing is said
};

constexpr int kSilent = INT_MIN;

class PidFileText : public Launcher, public testing::WithParamInterface<PidText> {};

TEST_P(PidFileText, IsReadAsOneDecimalNumber) {
    installService("exit=0");
    writePidFile(GetParam().text);
    EXPECT_EQ(start(), 0);
    const std::vector<std::string> said = log.linesStarting("[LaunchVPN] nevo.pid");
    if (GetParam().pid == kSilent) {
        EXPECT_TRUE(said.empty());
    } else {
        EXPECT_THAT(said, ElementsAre(notOwner(GetParam().pid)));
    }
}

// Process 1 of the sandbox is always there, and never the service.
INSTANTIATE_TEST_SUITE_P(
    Texts, PidFileText,
    testing::Values(PidText{"Empty", "", 0}, PidText{"Words", "abc", 0},
                    PidText{"Hexadecimal", "0x10", 0}, PidText{"One", "1", 1},
                    PidText{"LeadingZeros", "0001", 1}, PidText{"Blanks", " \t\r\n\v\f1\n", 1},
                    PidText{"Plus", "+1", 1}, PidText{"TextBehind", "1abc", 1},
                    PidText{"FractionBehind", "1.5", 1}, PidText{"ZeroByteBehind", "1", 1},
                    PidText{"MinusAlone", "-", 0}, PidText{"SignAndBlank", "+ 1", 0},
                    PidText{"TwoSigns", "--1", 0}, PidText{"MinusOne", "-1", kSilent},
                    PidText{"Unused", "2147483647", kSilent},
                    PidText{"BeyondInt", "2147483648", kSilent},
                    PidText{"WrapsToOne", "4294967297", kSilent},
                    PidText{"VeryLong", "99999999999999999999", kSilent},
                    PidText{"VeryLongMinus", "-99999999999999999999", kSilent}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Launcher, ANumberAfterALongRunOfBlanksIsRead) {
    installService("exit=0");
    std::string text(10000, ' ');
    writePidFile(text.append("1"));
    start();
    EXPECT_THAT(log.linesStarting("[LaunchVPN] nevo.pid"), ElementsAre(notOwner(1)));
}

TEST_F(Launcher, AFolderForThePidFileReadsAsNoNumber) {
    installService("exit=0");
    fs::create_directories(kPidFile);
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(log.linesStarting("[LaunchVPN] nevo.pid"), ElementsAre(notOwner(0)));
}

TEST_F(Launcher, ADanglingPidFileIsNone) {
    installService("exit=0");
    fs::create_directories(fs::path(kPidFile).parent_path());
    fs::create_symlink("/nowhere", kPidFile);
    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(log.linesStarting("[LaunchVPN] nevo.pid").empty());
}

TEST_F(Launcher, AnUnreadablePidFileIsNoneUnlessRootReadsIt) {
    installService("exit=0");
    writePidFile("1");
    chmod(kPidFile, 0);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(log.linesStarting("[LaunchVPN] nevo.pid").size(), sandboxUserIsRoot() ? 1U : 0U);
    EXPECT_EQ(stop(), -5);
}

TEST_F(Launcher, ANamedPipeForThePidFileIsNotWaitedFor) {
    installService("exit=0");
    fs::create_directories(fs::path(kPidFile).parent_path());
    ASSERT_EQ(mkfifo(kPidFile, 0600), 0);
    EXPECT_EQ(start(), 0);
}

TEST_F(Launcher, EachCallReadsThePidFileAfresh) {
    installService("exit=0");
    const ChildProcess running("nevo");
    EXPECT_EQ(start(), 0);
    writePidFile(std::to_string(running.pid()));
    EXPECT_EQ(start(), -1);
    writePidFile("");
    EXPECT_EQ(start(), 0);
}

// Who owns a process id.

TEST_F(Launcher, OnlyALiveProcessNamedNevoOwnsItsPid) {
    const ChildProcess service("nevo");
    const ChildProcess stranger("nevo2");
    EXPECT_TRUE(NevoOwnsPid(service.pid()));
    EXPECT_FALSE(NevoOwnsPid(stranger.pid()));
    EXPECT_FALSE(NevoOwnsPid(getpid()));
    EXPECT_FALSE(NevoOwnsPid(0));
    EXPECT_FALSE(NevoOwnsPid(-1));
    EXPECT_FALSE(NevoOwnsPid(deadPid()));
    EXPECT_FALSE(NevoOwnsPid(INT_MAX));
    EXPECT_TRUE(log.events().empty());
}

}  // namespace
