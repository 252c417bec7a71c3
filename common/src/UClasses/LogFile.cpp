#include "LogFile.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstring>

namespace {

constexpr int kNoMode = -1;

// The process's limit on file sizes when a log was last opened: asking for it costs as much as a
// short write does, and hardly any process has one.
constinit std::atomic<rlim_t> s_sizeLimit{RLIM_INFINITY};

int flagsOf(const char* mode) {
    int flags = kNoMode;
    switch (mode != nullptr ? mode[0] : '\0') {
        case 'a':
            flags = O_WRONLY | O_CREAT | O_APPEND;
            break;
        case 'w':
            flags = O_WRONLY | O_CREAT | O_APPEND | O_TRUNC;
            break;
        case 'r':
            flags = O_RDONLY;
            break;
        default:
            return kNoMode;
    }
    if (std::strchr(mode, '+') != nullptr) flags = (flags & ~O_ACCMODE) | O_RDWR;
    if (std::strchr(mode, 'x') != nullptr) flags |= O_EXCL;
    return flags;
}

bool isPipe(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

void learnSizeLimit() {
    rlimit limit{};
    const bool known = getrlimit(RLIMIT_FSIZE, &limit) == 0;
    s_sizeLimit.store(known ? limit.rlim_cur : RLIM_INFINITY, std::memory_order_relaxed);
}

bool isBeyondLimit(int descriptor, std::size_t bytes) {
    const rlim_t limit = s_sizeLimit.load(std::memory_order_relaxed);
    if (limit == RLIM_INFINITY) return false;
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           static_cast<rlim_t>(status.st_size) + bytes > limit;
}

// What is left to be written.
struct Rest {
    iovec* piece;
    int count;

    void drop(std::size_t bytes) {
        while (count > 0 && bytes >= piece->iov_len) {
            bytes -= piece->iov_len;
            ++piece;
            --count;
        }
        if (count == 0) return;
        piece->iov_base = static_cast<char*>(piece->iov_base) + bytes;
        piece->iov_len -= bytes;
    }
};

}  // namespace

std::FILE* openLogFile(const char* path, const char* mode) {
    const int flags = flagsOf(mode);
    if (flags == kNoMode) {
        errno = EINVAL;
        return nullptr;
    }
    const int descriptor = open(path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    if (descriptor < 0) return nullptr;
    // As if nobody read from it: a reader that goes away would end the host with a signal.
    std::FILE* const file =
        isPipe(descriptor) ? (errno = ENXIO, nullptr) : fdopen(descriptor, mode);
    if (file == nullptr) {
        const int error = errno;
        close(descriptor);
        errno = error;
        return nullptr;
    }
    learnSizeLimit();
    return file;
}

std::size_t writeToLogFile(std::FILE* file, std::initializer_list<std::string_view> pieces) {
    std::array<iovec, 8> vectors;
    assert(pieces.size() <= vectors.size());
    Rest rest{vectors.data(), 0};
    std::size_t total = 0;
    for (const std::string_view piece : pieces) {
        vectors[static_cast<std::size_t>(rest.count++)] = {const_cast<char*>(piece.data()),
                                                           piece.size()};
        total += piece.size();
    }
    const int descriptor = fileno(file);
    if (isBeyondLimit(descriptor, total)) {
        errno = EFBIG;
        return 0;
    }
    std::size_t written = 0;
    while (written < total) {
        const ssize_t count = writev(descriptor, rest.piece, rest.count);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
        if (written < total) rest.drop(static_cast<std::size_t>(count));
    }
    return written;
}
