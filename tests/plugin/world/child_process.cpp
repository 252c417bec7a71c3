#include "child_process.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

ChildProcess::ChildProcess(const std::string& name, Group group) {
    // A process's short name is the name of the file that it was started from.
    const fs::path program = fs::path("/tmp/children") / name;
    fs::create_directories(program.parent_path());
    if (!fs::is_symlink(program)) fs::create_symlink(ZERVA_STAND_IN, program);

    int ready[2];
    if (pipe(ready) != 0) throw std::runtime_error("no pipe");
    m_pid = fork();
    if (m_pid == 0) {
        if (group == Group::kItsOwn) setpgid(0, 0);
        dup2(ready[1], STDOUT_FILENO);
        close(ready[0]);
        close(ready[1]);
        setenv("ZERVA_STAND_IN_ORDERS", "ready wait", 1);
        execl(program.c_str(), program.c_str(), nullptr);
        _exit(98);
    }
    close(ready[1]);
    char byte = 0;
    while (read(ready[0], &byte, 1) > 0) {
    }
    close(ready[0]);
}

ChildProcess::~ChildProcess() {
    if (m_collected) return;
    kill(m_pid, SIGKILL);
    collect();
}

void ChildProcess::makeZombie() {
    kill(m_pid, SIGKILL);
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT);
}

int ChildProcess::collect() {
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_collected = true;
    return status;
}

pid_t deadPid() {
    const pid_t pid = fork();
    if (pid == 0) _exit(0);
    waitpid(pid, nullptr, 0);
    return pid;
}

void awaitEnd(pid_t pid) {
    const int process = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    if (process < 0) return;
    pollfd ended = {process, POLLIN, 0};
    poll(&ended, 1, 10000);
    close(process);
}

int openDescriptors() {
    const fs::directory_iterator all("/proc/self/fd");
    return static_cast<int>(std::distance(begin(all), end(all))) - 1;
}
