// Stands in for the VPN service program: takes the launch text on standard input, hands its work to
// a background process of its own name, and answers on the loopback port. behaviour.h says how it
// is told to misbehave.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "service/answers.h"
#include "service/behaviour.h"
#include "service/connection.h"
#include "witness/witness.h"

namespace {

constexpr std::uint16_t kPort = 44444;
constexpr const char* kPidFile = "/Library/Application Support/Zerva/nevo/var/run/nevo.pid";

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(3);
}

std::string readLaunchText() {
    std::string text;
    std::array<char, 65536> block;
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
}

int listenOnLoopback() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        listen(listener, SOMAXCONN) != 0) {
        fail("port 44444");
    }
    return listener;
}

[[noreturn]] void acceptForEver(int listener, Answers& answers, Behaviour& behaviour) {
    for (;;) {
        const int socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0) {
            std::thread([socket, &answers, &behaviour] {
                Connection(socket, answers, behaviour).serve();
            }).detach();
        }
    }
}

/// The background process: serves until a signal to end comes.
[[noreturn]] void work(int listener, Behaviour& behaviour, const sigset_t& endSignals) {
    setsid();
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    static Answers answers;
    std::thread([listener, &behaviour] { acceptForEver(listener, answers, behaviour); }).detach();
    int signal = 0;
    sigwait(&endSignals, &signal);
    testify({"plug-in", "service", "signal " + std::to_string(signal)});
    _exit(0);
}

void writePidFile(pid_t pid) {
    const std::filesystem::path path(kPidFile);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << pid << '\n';
}

int endWith(int status) {
    testify({"service", "plug-in", "exit status " + std::to_string(status)});
    return status;
}

}  // namespace

int main() {
    // Nothing of the browser's is kept open by a process that outlives it.
    close_range(3, ~0U, 0);
    Behaviour behaviour(Behaviour::file());
    const Rule launch = behaviour.next("launch");
    if (launch.action == "ignore-input") {
        testify({"plug-in", "service", "launch (input not read)"});
    } else {
        testify({"plug-in", "service", "launch " + gist(readLaunchText())});
    }
    if (launch.action == "kill") {
        std::raise(launch.number());
    }
    if (launch.action == "refuse") {
        return endWith(launch.number());
    }

    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigprocmask(SIG_BLOCK, &endSignals, nullptr);
    // Listening before this process ends: whoever waited for its end can connect at once.
    const int listener = listenOnLoopback();
    const pid_t worker = fork();
    if (worker < 0) {
        fail("fork");
    }
    if (worker == 0) {
        work(listener, behaviour, endSignals);
    }
    writePidFile(worker);
    return endWith(launch.action == "status" ? launch.number() : 0);
}
