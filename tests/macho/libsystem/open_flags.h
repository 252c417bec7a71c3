#pragma once

#include <fcntl.h>

namespace macho::libsystem {

struct OpenFlag {
    int mac;
    int host;
};

// <sys/fcntl.h> of both.
inline constexpr OpenFlag kOpenFlags[] = {
    {0x4, O_NONBLOCK},   {0x8, O_APPEND},         {0x100, O_NOFOLLOW},
    {0x200, O_CREAT},    {0x400, O_TRUNC},        {0x800, O_EXCL},
    {0x20000, O_NOCTTY}, {0x100000, O_DIRECTORY}, {0x1000000, O_CLOEXEC}};
inline constexpr int kMacCreate = 0x200;
inline constexpr int kAccessMode = 3;

/// The flags of open() on a Mac, in this system's numbers.
inline int hostOpenFlags(int flags) {
    int result = flags & kAccessMode;
    for (const OpenFlag& flag : kOpenFlags)
        if ((flags & flag.mac) != 0) result |= flag.host;
    return result;
}

/// The other way.
inline int macOpenFlags(int flags) {
    int result = flags & kAccessMode;
    for (const OpenFlag& flag : kOpenFlags)
        if ((flags & flag.host) == flag.host) result |= flag.mac;
    return result;
}

}  // namespace macho::libsystem
