#include "fault_points.h"

#include <dirent.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

namespace {

struct CallFault {
    std::string call;
    int nth = 0;
    int error = 0;
    long result = 0;
    std::function<void()> action;
    int seen = 0;
};

thread_local CallFault* armedCall = nullptr;

// Answers whether this call must not be made.
bool isDue(const char* call) {
    CallFault* fault = armedCall;
    if (fault == nullptr || fault->call != call || ++fault->seen != fault->nth) return false;
    if (fault->action) {
        fault->action();
        return false;
    }
    errno = fault->error;
    return true;
}

template <typename Result, typename Real, typename... Arguments>
Result through(const char* call, Real real, Arguments... arguments) {
    return isDue(call) ? static_cast<Result>(armedCall->result) : real(arguments...);
}

struct MemoryFault {
    bool armed = false;
    int nth = 0;
    int seen = 0;
    int live = 0;
};

thread_local MemoryFault armedMemory;

bool isAllocationDue() { return armedMemory.armed && ++armedMemory.seen == armedMemory.nth; }

void* counted(void* memory) {
    if (armedMemory.armed && memory != nullptr) ++armedMemory.live;
    return memory;
}

void* uncounted(void* memory) {
    if (armedMemory.armed && memory != nullptr) --armedMemory.live;
    return memory;
}

}  // namespace

Fault::Fault(const std::string& call, int nth, int error, long result) {
    if (armedCall != nullptr) throw std::logic_error("one fault at a time");
    armedCall = new CallFault{call, nth, error, result, nullptr, 0};
}

Fault::Fault(const std::string& call, int nth, std::function<void()> action)
    : Fault(call, nth, 0, 0) {
    armedCall->action = std::move(action);
}

Fault::~Fault() { delete std::exchange(armedCall, nullptr); }

int Fault::calls() const { return armedCall->seen; }

AllocationFault::AllocationFault(int nth) { armedMemory = {true, nth, 0, 0}; }

AllocationFault::~AllocationFault() { armedMemory.armed = false; }

int AllocationFault::allocations() const { return armedMemory.seen; }

int AllocationFault::live() const { return armedMemory.live; }

// The linker's names: __wrap_X is called in X's place, __real_X is X itself.
extern "C" {

pid_t __real_fork();
pid_t __wrap_fork() { return through<pid_t>("fork", __real_fork); }

int __real_pipe(int* ends);
int __wrap_pipe(int* ends) { return through<int>("pipe", __real_pipe, ends); }

int __real_dup2(int from, int to);
int __wrap_dup2(int from, int to) { return through<int>("dup2", __real_dup2, from, to); }

pid_t __real_waitpid(pid_t pid, int* status, int options);
pid_t __wrap_waitpid(pid_t pid, int* status, int options) {
    return through<pid_t>("waitpid", __real_waitpid, pid, status, options);
}

int __real_kill(pid_t pid, int number);
int __wrap_kill(pid_t pid, int number) { return through<int>("kill", __real_kill, pid, number); }

pid_t __real_getpgid(pid_t pid);
pid_t __wrap_getpgid(pid_t pid) { return through<pid_t>("getpgid", __real_getpgid, pid); }

DIR* __real_opendir(const char* path);
DIR* __wrap_opendir(const char* path) { return isDue("opendir") ? nullptr : __real_opendir(path); }

int __real_socket(int domain, int type, int protocol);
int __wrap_socket(int domain, int type, int protocol) {
    return through<int>("socket", __real_socket, domain, type, protocol);
}

int __real_setsockopt(int socket, int level, int option, const void* value, socklen_t size);
int __wrap_setsockopt(int socket, int level, int option, const void* value, socklen_t size) {
    return through<int>("setsockopt", __real_setsockopt, socket, level, option, value, size);
}

int __real_connect(int socket, const sockaddr* address, socklen_t size);
int __wrap_connect(int socket, const sockaddr* address, socklen_t size) {
    return through<int>("connect", __real_connect, socket, address, size);
}

ssize_t __real_read(int file, void* block, size_t size);
ssize_t __wrap_read(int file, void* block, size_t size) {
    return through<ssize_t>("read", __real_read, file, block, size);
}

ssize_t __real_write(int file, const void* block, size_t size);
ssize_t __wrap_write(int file, const void* block, size_t size) {
    return through<ssize_t>("write", __real_write, file, block, size);
}

void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size) {
    if (isDue("malloc") || isAllocationDue()) return nullptr;
    return counted(__real_malloc(size));
}

void* __real_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
    if (isDue("calloc") || isAllocationDue()) return nullptr;
    return counted(__real_calloc(count, size));
}

void __real_free(void* memory);
void __wrap_free(void* memory) { __real_free(uncounted(memory)); }

// operator new and new[], throwing and not; operator delete and delete[], with a size and without.

void* __real__Znwm(size_t size);
void* __wrap__Znwm(size_t size) {
    if (isAllocationDue()) throw std::bad_alloc();
    return counted(__real__Znwm(size));
}

void* __real__Znam(size_t size);
void* __wrap__Znam(size_t size) {
    if (isAllocationDue()) throw std::bad_alloc();
    return counted(__real__Znam(size));
}

void* __real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    if (isDue("new(nothrow)") || isAllocationDue()) return nullptr;
    return counted(__real__ZnwmRKSt9nothrow_t(size, tag));
}

void* __real__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    return isAllocationDue() ? nullptr : counted(__real__ZnamRKSt9nothrow_t(size, tag));
}

void __real__ZdlPv(void* memory);
void __wrap__ZdlPv(void* memory) { __real__ZdlPv(uncounted(memory)); }

void __real__ZdaPv(void* memory);
void __wrap__ZdaPv(void* memory) { __real__ZdaPv(uncounted(memory)); }

void __real__ZdlPvm(void* memory, size_t size);
void __wrap__ZdlPvm(void* memory, size_t size) { __real__ZdlPvm(uncounted(memory), size); }

void __real__ZdaPvm(void* memory, size_t size);
void __wrap__ZdaPvm(void* memory, size_t size) { __real__ZdaPvm(uncounted(memory), size); }
}
