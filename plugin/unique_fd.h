#pragma once

#include <unistd.h>

#include <utility>

/// A descriptor that is closed when its owner goes, unless it is released first.
class UniqueFd {
  public:
    explicit UniqueFd(int fd = -1) : m_fd(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : m_fd(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~UniqueFd() { reset(); }

    explicit operator bool() const { return m_fd >= 0; }
    int get() const { return m_fd; }

    /// Closes the descriptor now.
    void reset() {
        if (m_fd >= 0) close(release());
    }

    /// Gives the descriptor up, open. @return it.
    int release() { return std::exchange(m_fd, -1); }

  private:
    int m_fd;
};
