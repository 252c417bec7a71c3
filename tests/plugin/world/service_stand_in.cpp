// The service program of the tests: does what the words in ZERVA_STAND_IN_ORDERS say, in order.
//
//   note          writes what it sees of itself to the file ZERVA_STAND_IN_REPORT
//   input         reads standard input to its end into the file ZERVA_STAND_IN_INPUT
//   slow-input    the same, a byte at a time with a rest after each
//   background    leaves a copy of itself behind that waits for a signal; its id in the pid file
//   pid-file      writes its own id into the pid file
//   stop          stops itself
//   wait          waits for a signal
//   ready         closes descriptor 1: who started it then knows that it runs
//   exit=N        ends with status N
//   signal=N      ends by signal N
//
// Without exit or signal it ends with status 0.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// A descriptor as "NUMBER KIND FLAGS", such as "0 pipe:[1234] r".
std::string describe(int fd) {
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    std::error_code ignored;
    const std::string target = fs::read_symlink(link, ignored).string();
    const char* const kModes[] = {"r", "w", "rw"};
    return std::to_string(fd) + " " + target + " " + kModes[fcntl(fd, F_GETFL) & O_ACCMODE];
}

// The signals that are blocked, as the system shows them.
std::string blockedSignals() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "SigBlk:") {
            status >> word;
            return word;
        }
    }
    return "";
}

void note(int argc, char** argv) {
    std::ostringstream text;
    text << "pid " << getpid() << "\nparent " << getppid() << "\n";
    for (int i = 0; i < argc; ++i) text << "argument " << argv[i] << "\n";
    text << "blocked " << blockedSignals() << "\n";
    text << "environment " << environment("ZERVA_INHERITED") << "\n";
    for (int fd = 0; fd < 256; ++fd) {
        if (fcntl(fd, F_GETFD) != -1) text << "descriptor " << describe(fd) << "\n";
    }
    std::ofstream(environment("ZERVA_STAND_IN_REPORT")) << text.str();
}

void readInput(bool slowly) {
    std::ofstream file(environment("ZERVA_STAND_IN_INPUT"), std::ios::binary);
    char block[65536];
    const std::size_t most = slowly ? 1 : sizeof block;
    for (ssize_t count = 0; (count = read(STDIN_FILENO, block, most)) > 0;) {
        file.write(block, count);
        const timespec kRest = {0, 1000000};
        if (slowly) nanosleep(&kRest, nullptr);
    }
}

void writePidFile(pid_t pid) {
    const fs::path path = "/Library/Application Support/Zerva/nevo/var/run/nevo.pid";
    fs::create_directories(path.parent_path());
    std::ofstream(path) << pid << "\n";
}

[[noreturn]] void waitForSignal() {
    for (;;) pause();
}

void leaveBackground() {
    const pid_t pid = fork();
    if (pid == 0) waitForSignal();
    writePidFile(pid);
}

[[noreturn]] void endBySignal(int number) {
    std::signal(number, SIG_DFL);
    std::raise(number);
    _exit(99);
}

}  // namespace

int main(int argc, char** argv) {
    std::istringstream orders(environment("ZERVA_STAND_IN_ORDERS"));
    for (std::string order; orders >> order;) {
        if (order == "note") note(argc, argv);
        if (order == "input") readInput(false);
        if (order == "slow-input") readInput(true);
        if (order == "background") leaveBackground();
        if (order == "pid-file") writePidFile(getpid());
        if (order == "stop") std::raise(SIGSTOP);
        if (order == "ready") close(STDOUT_FILENO);
        if (order == "wait") waitForSignal();
        if (order.starts_with("signal=")) endBySignal(std::stoi(order.substr(7)));
        if (order.starts_with("exit=")) _exit(std::stoi(order.substr(5)));
    }
    return 0;
}
