// A pid file of any bytes: the number is what scanf's "%d" reads, or the nearest that fits, and
// starting and stopping the service do with it what they must and give one of their four results.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <string>
#include <utility>

#include "fake_machine.h"
#include "fuzz_input.h"
#include "launcher.h"
#include "pid_file.h"

namespace {

int numberIn(const std::string& bytes) {
    std::size_t at = bytes.find_first_not_of(" \t\n\v\f\r");
    if (at == std::string::npos) return 0;
    const bool negative = bytes[at] == '-';
    if (negative || bytes[at] == '+') ++at;
    std::string digits = bytes.substr(at);
    digits = digits.substr(0, digits.find_first_not_of("0123456789"));
    digits = digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty()) return 0;
    if (digits.size() > 10 || std::stoll(digits) > INT_MAX) return negative ? INT_MIN : INT_MAX;
    return negative ? -std::stoi(digits) : std::stoi(digits);
}

void checkStart(int pid) {
    FakeMachine& world = machine();
    const bool runs =
        world.processLives && world.processName == "nevo" && pid >= 0 && world.processId == pid;
    int expected = kServiceStarted;
    if (world.exitStatus == 2) expected = kServiceNotInstalled;
    if (!world.canStart) expected = kLaunchFailed;
    EXPECT_EQ(LaunchVPN("text", 0), runs ? kServiceAlreadyRuns : expected);
    EXPECT_EQ(world.starts.size(), runs || !world.canStart ? 0U : 1U);
    EXPECT_TRUE(world.signals.empty());
}

void checkStop(int pid) {
    FakeMachine& world = machine();
    EXPECT_EQ(LaunchVPN("text", 1), kLaunchFailed);
    ASSERT_EQ(world.signals.size(), 1U);
    EXPECT_EQ(world.signals[0], std::pair(pid, SIGTERM));
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    FakeMachine& world = machine();
    world = {};
    world.processLives = input.flag();
    world.processName = input.flag() ? "nevo" : "nevo2";
    world.canStart = input.flag();
    const bool isListed = input.flag();
    world.exitStatus = static_cast<int>(input.below(4));
    world.pidFile = input.rest();
    const int pid = numberIn(*world.pidFile);
    world.processId = isListed ? pid : 1;
    EXPECT_EQ(readServicePid(), pid);
    checkStart(pid);
    checkStop(pid);
    EXPECT_EQ(world.openFiles, 0);
}
