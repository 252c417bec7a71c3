#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A moment by the system's clock in local time, as log lines show it.
class LogMoment {
  public:
    /// Now. Each thread converts a second once and remembers it.
    LogMoment();

    /// @return false when the C library cannot tell the local time; there are no texts then.
    explicit operator bool() const { return m_length != 0; }

    /// @return "2024-03-05, 7:08:09:010".
    std::string_view dateAndTime() const { return {m_text.data(), m_length}; }

    /// @return " 7:08:09:010", the hour padded with a blank.
    std::string_view time() const { return dateAndTime().substr(m_timeAt); }

    static constexpr std::size_t kMaxLength = 64;

  private:
    std::array<char, kMaxLength> m_text;
    std::size_t m_timeAt = 0;
    std::size_t m_length = 0;
};

/// @return the system's id of the calling thread, which each thread asks for once.
uint64_t logThreadId();

/// For the thread that forks, before: learns what the child may not ask the C library for.
void prepareLogClockForFork();

/// For the thread that forked, in the child: it is another thread there, and the locks of the C
/// library's time zone may be held by a thread that is not, so it keeps the zone it had.
void renewLogClockInChild();
