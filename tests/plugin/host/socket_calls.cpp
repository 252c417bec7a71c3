#include "socket_calls.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include "scripted_browser.h"

namespace {

thread_local SocketCalls* listener = nullptr;

template <typename... Arguments>
void note(const char* call, const Arguments&... arguments) {
    if (listener != nullptr) listener->made.push_back(callText(call, arguments...));
}

}  // namespace

SocketCalls::SocketCalls() { listener = this; }
SocketCalls::~SocketCalls() { listener = nullptr; }

// The linker sends a call to its __wrap_ name, and __real_ leads to the library.
extern "C" {

int __real_socket(int domain, int type, int protocol);
int __wrap_socket(int domain, int type, int protocol) {
    note("socket", domain, type, protocol);
    return __real_socket(domain, type, protocol);
}

int __real_setsockopt(int fd, int level, int name, const void* value, socklen_t size);
int __wrap_setsockopt(int fd, int level, int name, const void* value, socklen_t size) {
    note("setsockopt", level, name, *static_cast<const int*>(value), size);
    return __real_setsockopt(fd, level, name, value, size);
}

int __real_connect(int fd, const sockaddr* address, socklen_t size);
int __wrap_connect(int fd, const sockaddr* address, socklen_t size) {
    const auto* peer = reinterpret_cast<const sockaddr_in*>(address);
    note("connect", ntohl(peer->sin_addr.s_addr), ntohs(peer->sin_port));
    return __real_connect(fd, address, size);
}

ssize_t __real_write(int fd, const void* block, size_t size);
ssize_t __wrap_write(int fd, const void* block, size_t size) {
    note("write", size);
    return __real_write(fd, block, size);
}

ssize_t __real_read(int fd, void* block, size_t size);
ssize_t __wrap_read(int fd, void* block, size_t size) {
    note("read", size);
    return __real_read(fd, block, size);
}

int __real_shutdown(int fd, int how);
int __wrap_shutdown(int fd, int how) {
    note("shutdown", how);
    return __real_shutdown(fd, how);
}

int __real_close(int fd);
int __wrap_close(int fd) {
    note("close");
    return __real_close(fd);
}
}
