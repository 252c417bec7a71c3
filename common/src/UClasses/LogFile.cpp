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

// What goes into a file in one call: a short line put together in a buffer, which costs less than
// handing the system its pieces, or the pieces of a long one.
class Bytes {
  public:
    Bytes(std::initializer_list<std::string_view> head, std::span<const std::string_view> text) {
        assert(head.size() <= kMostHeadPieces && text.size() <= kMostLogTextPieces);
        for (const std::string_view piece : head) add(piece);
        for (const std::string_view piece : text) add(piece);
        if (m_total <= m_line.size()) join();
    }
    Bytes(const Bytes&) = delete;
    Bytes& operator=(const Bytes&) = delete;

    std::size_t total() const { return m_total; }

    // Writes what is left; as `writev`.
    ssize_t write(int descriptor) const {
        return m_count == 1 ? ::write(descriptor, m_next->iov_base, m_next->iov_len)
                            : writev(descriptor, m_next, m_count);
    }

    // Makes what follows the first `bytes` what is left.
    void drop(std::size_t bytes) {
        while (m_count > 0 && bytes >= m_next->iov_len) {
            bytes -= m_next->iov_len;
            ++m_next;
            --m_count;
        }
        if (m_count == 0) return;
        m_next->iov_base = static_cast<char*>(m_next->iov_base) + bytes;
        m_next->iov_len -= bytes;
    }

  private:
    static constexpr std::size_t kMostHeadPieces = 4;

    // An empty piece may have no characters at all, which no copy may be asked for.
    void add(std::string_view piece) {
        if (piece.empty()) return;
        m_pieces[static_cast<std::size_t>(m_count++)] = {const_cast<char*>(piece.data()),
                                                         piece.size()};
        m_total += piece.size();
    }

    void join() {
        char* end = m_line.data();
        for (int i = 0; i < m_count; ++i) {
            end = static_cast<char*>(std::memcpy(end, m_next[i].iov_base, m_next[i].iov_len)) +
                  m_next[i].iov_len;
        }
        m_pieces[0] = {m_line.data(), m_total};
        m_count = 1;
    }

    std::array<iovec, kMostHeadPieces + kMostLogTextPieces> m_pieces;
    std::array<char, 2048> m_line;
    iovec* m_next = m_pieces.data();
    int m_count = 0;
    std::size_t m_total = 0;
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
    std::FILE* file = nullptr;
    if (isPipe(descriptor)) {
        // As if nobody read from it: a reader that goes away would end the host with a signal.
        errno = ENXIO;
    } else {
        file = fdopen(descriptor, mode);
    }
    if (file == nullptr) {
        const int error = errno;
        close(descriptor);
        errno = error;
        return nullptr;
    }
    learnSizeLimit();
    return file;
}

std::size_t writeToLogFile(std::FILE* file, std::initializer_list<std::string_view> head,
                           std::span<const std::string_view> text) {
    Bytes bytes(head, text);
    const int descriptor = fileno(file);
    if (isBeyondLimit(descriptor, bytes.total())) {
        errno = EFBIG;
        return 0;
    }
    std::size_t written = 0;
    while (written < bytes.total()) {
        const ssize_t count = bytes.write(descriptor);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
        bytes.drop(static_cast<std::size_t>(count));
    }
    return written;
}
