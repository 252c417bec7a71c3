#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "errors.h"
#include "symbol_table.h"

namespace macho::libsystem {

namespace {

constexpr int kMacInet6 = 30;

int hostFamily(int family) { return family == kMacInet6 ? AF_INET6 : family; }
int macFamily(int family) { return family == AF_INET6 ? kMacInet6 : family; }

// A Mac's address begins with its length in one byte and the family in another.
struct MacAddressHead {
    std::uint8_t length;
    std::uint8_t family;
};

class HostAddress {
  public:
    HostAddress(const void* macAddress, socklen_t size) {
        std::memcpy(&m_storage, macAddress, std::min<std::size_t>(size, sizeof m_storage));
        MacAddressHead head;
        std::memcpy(&head, macAddress, sizeof head);
        m_storage.ss_family = static_cast<sa_family_t>(hostFamily(head.family));
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&m_storage); }

  private:
    sockaddr_storage m_storage{};
};

void makeMacAddress(void* address, const socklen_t* size) {
    if (address == nullptr || size == nullptr) return;
    sa_family_t family = 0;
    std::memcpy(&family, address, sizeof family);
    const MacAddressHead head = {static_cast<std::uint8_t>(*size),
                                 static_cast<std::uint8_t>(macFamily(family))};
    std::memcpy(address, &head, sizeof head);
}

int openSocket(int family, int type, int protocol) {
    return socket(hostFamily(family), type, protocol);
}
int connectSocket(int file, const void* address, socklen_t size) {
    return connect(file, HostAddress(address, size).get(), size);
}
int bindSocket(int file, const void* address, socklen_t size) {
    return bind(file, HostAddress(address, size).get(), size);
}
int acceptSocket(int file, void* address, socklen_t* size) {
    const int accepted = accept(file, static_cast<sockaddr*>(address), size);
    if (accepted >= 0) makeMacAddress(address, size);
    return accepted;
}
int nameOfSocket(int file, void* address, socklen_t* size) {
    const int result = getsockname(file, static_cast<sockaddr*>(address), size);
    if (result == 0) makeMacAddress(address, size);
    return result;
}

// <sys/socket.h> of both. The levels of the protocols are the same.
constexpr int kMacSocketLevel = 0xFFFF;
constexpr int kMacReceiveTimeout = 0x1006;
constexpr int kMacSendTimeout = 0x1005;
constexpr int kMacError = 0x1007;

struct Option {
    int mac;
    int host;
};
constexpr Option kOptions[] = {{0x4, SO_REUSEADDR},
                               {0x8, SO_KEEPALIVE},
                               {0x20, SO_BROADCAST},
                               {0x80, SO_LINGER},
                               {0x1001, SO_SNDBUF},
                               {0x1002, SO_RCVBUF},
                               {kMacSendTimeout, SO_SNDTIMEO},
                               {kMacReceiveTimeout, SO_RCVTIMEO},
                               {kMacError, SO_ERROR},
                               {0x1008, SO_TYPE}};
constexpr int kNoOption = -1;

int hostOption(int option) {
    for (const Option& each : kOptions)
        if (each.mac == option) return each.host;
    return kNoOption;
}

// The microseconds are a word of 32 bits there; what stands behind it means nothing.
timeval hostTime(const void* macTime) {
    timeval time;
    std::memcpy(&time, macTime, sizeof time);
    time.tv_usec = static_cast<std::int32_t>(time.tv_usec);
    return time;
}

int setOption(int file, int level, int option, const void* value, socklen_t size) {
    if (level != kMacSocketLevel) return setsockopt(file, level, option, value, size);
    if (option == kMacReceiveTimeout || option == kMacSendTimeout) {
        const timeval time = hostTime(value);
        return setsockopt(file, SOL_SOCKET, hostOption(option), &time, sizeof time);
    }
    return setsockopt(file, SOL_SOCKET, hostOption(option), value, size);
}

int getOption(int file, int level, int option, void* value, socklen_t* size) {
    if (level != kMacSocketLevel) return getsockopt(file, level, option, value, size);
    const int result = getsockopt(file, SOL_SOCKET, hostOption(option), value, size);
    if (result == 0 && option == kMacError) {
        int error = 0;
        std::memcpy(&error, value, sizeof error);
        error = macError(error);
        std::memcpy(value, &error, sizeof error);
    }
    return result;
}

int selectFiles(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                const void* macTime) {
    timeval time = {};
    if (macTime != nullptr) time = hostTime(macTime);
    return select(count, readable, writable, failed, macTime != nullptr ? &time : nullptr);
}

// Asks whether a descriptor fits into a set of them.
int fitsIntoSet(int file, const void* /*set*/, int /*isUnlimited*/) { return file < FD_SETSIZE; }

}  // namespace

void addSockets(SymbolTable& table) {
    table.addCall("_socket", openSocket);
    table.addCall("_connect", connectSocket);
    table.addCall("_bind", bindSocket);
    table.addCall("_accept", acceptSocket);
    table.addCall("_getsockname", nameOfSocket);
    table.addCall("_setsockopt", setOption);
    table.addCall("_getsockopt", getOption);
    table.addCall("_select", selectFiles);
    table.addCall("___darwin_check_fd_set_overflow", fitsIntoSet);
}

}  // namespace macho::libsystem
