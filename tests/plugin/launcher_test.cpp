#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <thread>

#include "bare_log.h"
#include "child_process.h"
#include "launcher_fixture.h"

// Starting real programs: how they end, and what they see.

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

// How the program ends.

struct Exit {
    int status;
    int result;
};

class ProgramExit : public Launcher, public testing::WithParamInterface<Exit> {};

TEST_P(ProgramExit, DecidesTheResult) {
    installService("note exit=" + std::to_string(GetParam().status));
    EXPECT_EQ(start(), GetParam().result);
    ASSERT_EQ(noted("pid").size(), 1U);
    EXPECT_EQ(log.events(),
              startLines("[LaunchVPN] process exited pid='" + noted("pid")[0] + "',  WIFEXITED='" +
                         std::to_string(GetParam().status) + "'\n"));
    EXPECT_THAT(noted("parent"), ElementsAre(std::to_string(getpid())));
}

INSTANTIATE_TEST_SUITE_P(Statuses, ProgramExit,
                         testing::Values(Exit{0, 0}, Exit{1, 0}, Exit{2, -2}, Exit{3, 0},
                                         Exit{127, 0}, Exit{128 + 2, 0}, Exit{254, 0},
                                         Exit{255, 0}),
                         [](const auto& row) { return std::to_string(row.param.status); });

class ProgramSignal : public Launcher, public testing::WithParamInterface<int> {};

TEST_P(ProgramSignal, IsAFailure) {
    installService("signal=" + std::to_string(GetParam()));
    EXPECT_EQ(start(), -5);
    ASSERT_EQ(log.lines().size(), 2U);
    // A core dump, where the system makes one, shows as 128 in the raw status.
    const auto line = [](int status) {
        return "[LaunchVPN] run error code ='" + std::to_string(status) + "' (exit status ='0')\n";
    };
    EXPECT_THAT(log.lines()[1], testing::AnyOf(line(GetParam()), line(GetParam() + 128)));
}

INSTANTIATE_TEST_SUITE_P(Signals, ProgramSignal,
                         testing::Values(SIGTERM, SIGKILL, SIGSEGV, SIGABRT, SIGPIPE, SIGHUP),
                         testing::PrintToStringParamName());

TEST_F(Launcher, WaitsForAProgramThatHasOnlyStopped) {
    installService("stop");
    const ChildProcess bystander("bystander");  // there is always a child to wait for
    std::thread ender([] {
        siginfo_t info = {};
        waitid(P_ALL, 0, &info, WSTOPPED | WNOWAIT);
        kill(info.si_pid, SIGKILL);
    });
    EXPECT_EQ(start(), -5);
    ender.join();
    EXPECT_EQ(log.lines().back(), "[LaunchVPN] run error code ='9' (exit status ='0')\n");
}

// A program that cannot be started.

// A log object that copies of this process can write to as well.
class PipeLog final : public BareLog {
  public:
    explicit PipeLog(int end) : m_end(end) {}
    int WriteLogStr(const char* text) override {
        return static_cast<int>(write(m_end, text, std::strlen(text)));
    }

  private:
    int m_end;
};

enum class Program { kMissing, kNotExecutable, kNoFormat, kNoInterpreter, kFolder };

class UnusableProgram : public Launcher, public testing::WithParamInterface<Program> {
  protected:
    static void install(Program program) {
        switch (program) {
            case Program::kMissing:
                return;
            case Program::kNotExecutable:
                return installServiceFile("#!/bin/sh\n", 0644);
            case Program::kNoFormat:
                return installServiceFile("nonsense", 0755);
            case Program::kNoInterpreter:
                return installServiceFile("#!/not/there\n", 0755);
            case Program::kFolder:
                fs::create_directories(kServiceProgram);
                return;
        }
    }
};

TEST_P(UnusableProgram, CountsAsStartedAndTheCopySaysSo) {
    install(GetParam());
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    PipeLog pipeLog(ends[1]);
    module->errorLog() = &pipeLog;
    EXPECT_EQ(start(), 0);
    module->errorLog() = &log;
    close(ends[1]);
    std::string text(4096, '\0');
    const ssize_t count = read(ends[0], text.data(), text.size());
    close(ends[0]);
    ASSERT_GT(count, 0);
    text.resize(static_cast<std::size_t>(count));
    const std::string copysLine = "[LaunchVPN] - something wrong if we are here!\n";
    EXPECT_NE(text.find(copysLine), std::string::npos) << text;
    EXPECT_NE(text.find("',  WIFEXITED='255'\n"), std::string::npos) << text;
    fs::remove_all(kServiceProgram);
}

INSTANTIATE_TEST_SUITE_P(Programs, UnusableProgram,
                         testing::Values(Program::kMissing, Program::kNotExecutable,
                                         Program::kNoFormat, Program::kNoInterpreter,
                                         Program::kFolder),
                         [](const auto& row) { return "Program" + std::to_string(row.index); });

// What the program sees.

TEST_F(Launcher, TheProgramGetsItsPathAloneAndTheEnvironment) {
    installService("note");
    setenv("ZERVA_INHERITED", "from the browser", 1);
    start();
    EXPECT_THAT(noted("argument"), ElementsAre(kServiceProgram));
    EXPECT_THAT(noted("environment"), ElementsAre("from the browser"));
}

TEST_F(Launcher, TheProgramHoldsTheReadEndTwiceAndNotTheWriteEnd) {
    installService("note");
    start();
    const std::vector<std::string> ends = notedPipeEnds();
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_EQ(ends[0], "0 r");
    EXPECT_EQ(ends[1].back(), 'r');
}

TEST_F(Launcher, AReadEndThatIsStandardInputAlreadyIsLeftThere) {
    installService("note input");
    const int kept = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100);
    close(STDIN_FILENO);
    EXPECT_EQ(start("text"), 0);
    dup2(kept, STDIN_FILENO);
    close(kept);
    EXPECT_THAT(notedPipeEnds(), ElementsAre("0 r"));
    EXPECT_EQ(serviceInput(), "text");
}

TEST_F(Launcher, NoDescriptorIsLeftOpen) {
    installService("exit=0");
    const int before = openDescriptors();
    for (int i = 0; i < 20; ++i) start();
    EXPECT_EQ(openDescriptors(), before);
}

struct Input {
    const char* name;
    std::string text;
    const char* orders;
};

class LaunchText : public Launcher, public testing::WithParamInterface<Input> {};

TEST_P(LaunchText, IsReadToTheLastByteAndEnds) {
    installService(GetParam().orders);
    EXPECT_EQ(start(GetParam().text.c_str()), 0);
    EXPECT_TRUE(serviceInput() == GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LaunchText,
    testing::Values(Input{"Empty", "", "input"}, Input{"Plain", "a=1&b=2&", "input"},
                    Input{"Awkward", "%n %s ' \" \\ \n", "input"},
                    Input{"MoreThanThePipeHolds", std::string(1000000, 'x'), "input"},
                    Input{"ReadSlowly", std::string(200, 'y'), "slow-input"},
                    Input{"WithInputKeptOpenElsewhere", "text", "background input"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Launcher, WaitsOnlyForTheProgramItself) {
    installService("background exit=0");
    EXPECT_EQ(start(), 0);
    const pid_t background = std::stoi(readFile(kPidFile));
    EXPECT_EQ(kill(background, SIGKILL), 0);
}

TEST_F(Launcher, AProgramThatDoesNotReadItsInputIsJudgedByItsStatus) {
    const std::string text(200 * 1024, 'x');
    for (const auto& [orders, result] :
         {std::pair{"exit=0", 0}, {"exit=2", -2}, {"signal=9", -5}}) {
        installService(orders);
        EXPECT_EQ(start(text.c_str()), result) << orders;
    }
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(Launcher, TheProgramInheritsNoBlockedSignals) {
    installService("note");
    start();
    EXPECT_THAT(noted("blocked"), ElementsAre("0000000000000000"));
}

TEST_F(Launcher, AHostThatCollectsItsChildrenItselfCountsAsStarted) {
    installService("exit=2");
    signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(start(), 0);
    signal(SIGCHLD, SIG_DFL);
}

}  // namespace
