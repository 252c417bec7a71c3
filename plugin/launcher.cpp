#include "launcher.h"

#include <fcntl.h>
#include <sys/sysctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "ForkHooks.h"
#include "nevo_service.h"
#include "pid_file.h"
#include "plugin_log.h"
#include "sigpipe_guard.h"
#include "unique_fd.h"

namespace {

// What the kernel of a 64-bit Mac fills in.
static_assert(sizeof(kinfo_proc) == 648);

struct FreeMemory {
    void operator()(void* memory) const { free(memory); }
};
using ProcessTable = std::unique_ptr<kinfo_proc[], FreeMemory>;

// A snapshot of all processes; null when it cannot be had, which is logged. The table is sized once
// and not asked for again: one that grew in between counts as a failure.
ProcessTable listProcesses(size_t& count) {
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
    size_t size = 0;
    if (sysctl(name, 4, nullptr, &size, nullptr, 0) != 0) {
        PluginWriteLog(0, "[CheckNevoByPid] sysctl failed (%s)\n", strerror(errno));
        return nullptr;
    }
    ProcessTable table(static_cast<kinfo_proc*>(malloc(size)));
    if (!table) {
        PluginWriteLog(0, "[CheckNevoByPid] Cannot allocate memory with %d size \n",
                       static_cast<int>(size));
        return nullptr;
    }
    // One number fewer than above: both forms name the same listing, and this one is kept.
    if (sysctl(name, 3, table.get(), &size, nullptr, 0) != 0) {
        PluginWriteLog(0, "[CheckNevoByPid] sysctl failed (%s)\n", strerror(errno));
        return nullptr;
    }
    count = size / sizeof(kinfo_proc);
    return table;
}

// Whether the pid file names a live service. A file left behind by one that is gone is logged.
bool serviceRuns() {
    const std::optional<int> pid = readServicePid();
    if (!pid || getpgid(*pid) == -1) return false;
    if (NevoOwnsPid(*pid)) {
        PluginWriteLog(1, "[LaunchVPN] nevo server already launched, pid='%d'\n", *pid);
        return true;
    }
    PluginWriteLog(
        0, "[LaunchVPN] nevo.pid file is exist, but nevo is not owner of the pid, pid='%d'\n",
        *pid);
    return false;
}

int stopService() {
    // The number is not looked at: 0, from a file without one, means our own process group.
    if (const std::optional<int> pid = readServicePid()) kill(*pid, SIGTERM);
    return kLaunchFailed;
}

// The copy of this process becomes the service program, with the pipe as its standard input.
[[noreturn]] void becomeServiceProgram(int readEnd, int writeEnd) {
    close(writeEnd);
    // The read end stays open as a second descriptor after it was duplicated: kept so.
    if (readEnd != STDIN_FILENO && dup2(readEnd, STDIN_FILENO) != STDIN_FILENO) close(readEnd);
    execl(nevo::kProgram, nevo::kProgram, static_cast<char*>(nullptr));
    PluginWriteLog(0, "[LaunchVPN] - something wrong if we are here!\n");
    // Not exit(): the browser's exit handlers wait for threads that this copy does not have.
    _exit(255);
}

// Hands the text to the program and closes the pipe, so that it reads the end of its input.
void sendLaunchData(UniqueFd pipe, const char* launchData) {
    const SigpipeGuard guard(pipe.get());
    // A program that does not read its input is judged by its exit status alone.
    [[maybe_unused]] const ssize_t ignored = write(pipe.get(), launchData, strlen(launchData));
}

// Waits for the program and judges how it ended.
int awaitProgram(pid_t pid) {
    int status = 0;  // stays 0 when the host has collected the child itself
    while (waitpid(pid, &status, 0) == -1 && errno == EINTR) {
    }
    if (!WIFEXITED(status)) {
        PluginWriteLog(0, "[LaunchVPN] run error code ='%d' (exit status ='%d')\n", status,
                       WEXITSTATUS(status));
        return kLaunchFailed;
    }
    PluginWriteLog(0, "[LaunchVPN] process exited pid='%d',  WIFEXITED='%d'\n", pid,
                   WEXITSTATUS(status));
    return WEXITSTATUS(status) == nevo::kExitNotInstalled ? kServiceNotInstalled : kServiceStarted;
}

// A fork whose child may log, whatever other threads of the browser do with the log meanwhile.
pid_t forkWithLog() {
    prepareLogForFork();
    const pid_t pid = fork();
    if (pid == 0) {
        resumeLogInChild();
    } else {
        resumeLogInParent();
    }
    return pid;
}

int startService(const char* launchData) {
    int ends[2] = {0, 0};
    if (pipe(ends) != 0) {
        PluginWriteLog(0, "[LaunchVPN] pipe error='%d'\n", errno);
        return kLaunchFailed;
    }
    UniqueFd readEnd(ends[0]);
    UniqueFd writeEnd(ends[1]);
    // A program that another thread starts meanwhile must not hold the input open.
    fcntl(writeEnd.get(), F_SETFD, FD_CLOEXEC);
    const pid_t pid = forkWithLog();
    if (pid == -1) {
        PluginWriteLog(0, "[LaunchVPN] fork error='%d'\n", errno);
        return kLaunchFailed;
    }
    if (pid == 0) becomeServiceProgram(readEnd.get(), writeEnd.get());
    readEnd.reset();
    sendLaunchData(std::move(writeEnd), launchData);
    return awaitProgram(pid);
}

}  // namespace

bool NevoOwnsPid(int pid) {
    size_t count = 0;
    const ProcessTable table = listProcesses(count);
    if (!table) return false;
    const kinfo_proc* end = table.get() + count;
    const kinfo_proc* found =
        std::find_if(static_cast<const kinfo_proc*>(table.get()), end,
                     [pid](const kinfo_proc& record) { return record.kp_proc.p_pid == pid; });
    return found != end && strcmp(found->kp_proc.p_comm, nevo::kCommandName) == 0;
}

int LaunchVPN(const char* launchData, int stop) {
    PluginWriteLog(4, "[LaunchVPN] ('%s', '%d')\n", launchData, stop);
    if (stop != 0) return stopService();
    return serviceRuns() ? kServiceAlreadyRuns : startService(launchData);
}
