#include "fake_machine.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "nevo_service.h"

namespace {

// Descriptors that the real machine never gives out.
constexpr int kPidFile = 1 << 24;
constexpr int kPipeRead = kPidFile + 1;
constexpr int kPipeWrite = kPidFile + 2;
constexpr int kSocket = kPidFile + 3;

constexpr int kChild = 1 << 22;

std::size_t pidFileRead = 0;

int openFake(int fd) {
    ++machine().openFiles;
    return fd;
}

int refuse(int error) {
    errno = error;
    return -1;
}

}  // namespace

FakeMachine& machine() {
    static FakeMachine one;
    return one;
}

int sysctl(int*, u_int, void* buffer, size_t* size, void*, size_t) {
    kinfo_proc record{};
    record.kp_proc.p_pid = machine().processId;
    machine().processName.copy(record.kp_proc.p_comm, MAXCOMLEN);
    if (buffer != nullptr) std::memcpy(buffer, &record, std::min(*size, sizeof record));
    *size = sizeof record;
    return 0;
}

extern "C" {

int fake_open(const char* path, int, ...) {
    EXPECT_STREQ(path, nevo::kPidFile);
    pidFileRead = 0;
    return machine().pidFile ? openFake(kPidFile) : refuse(ENOENT);
}

ssize_t fake_read(int fd, void* block, size_t size) {
    const bool isFile = fd == kPidFile;
    EXPECT_TRUE(isFile || fd == kSocket);
    const std::string& bytes = isFile ? *machine().pidFile : *machine().answer;
    const std::size_t length =
        bytes.copy(static_cast<char*>(block), size, isFile ? pidFileRead : 0);
    if (isFile) pidFileRead += length;
    return static_cast<ssize_t>(length);
}

ssize_t fake_write(int fd, const void* block, size_t size) {
    EXPECT_TRUE(fd == kPipeWrite || fd == kSocket);
    if (fd == kPipeWrite) machine().starts.emplace_back(static_cast<const char*>(block), size);
    return static_cast<ssize_t>(size);
}

int fake_close(int fd) {
    EXPECT_TRUE(fd >= kPidFile && fd <= kSocket);
    --machine().openFiles;
    return 0;
}

int fake_pipe(int* ends) {
    ends[0] = openFake(kPipeRead);
    ends[1] = openFake(kPipeWrite);
    return 0;
}

pid_t fake_fork() { return machine().canStart ? kChild : refuse(EAGAIN); }

pid_t fake_waitpid(pid_t pid, int* status, int) {
    *status = machine().exitStatus << 8;
    return pid;
}

pid_t fake_getpgid(pid_t pid) {
    return machine().processLives && pid >= 0 ? kChild : refuse(ESRCH);
}

int fake_kill(pid_t pid, int signal) {
    if (signal != 0) machine().signals.emplace_back(pid, signal);
    return machine().processLives ? 0 : refuse(ESRCH);
}

int fake_socket(int, int, int) { return openFake(kSocket); }
int fake_setsockopt(int, int, int, const void*, socklen_t) { return 0; }
int fake_shutdown(int, int) { return 0; }
int fake_connect(int, const sockaddr*, socklen_t) {
    return machine().answer ? 0 : refuse(ECONNREFUSED);
}

}  // extern "C"
