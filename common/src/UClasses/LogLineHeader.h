#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "CString.h"
#include "LogClock.h"

/// What begins a line of the file log: "2024-03-05, 7:08:09:010, 4321,77001,nevo_plugin, ".
class LogLineHeader {
  public:
    /// Fills it in for the calling thread, this moment and a shared name.
    /// @return false when the C library cannot tell the local time.
    bool stamp(int processId, const CString& moduleName);

    /// @return the header but for the ", " at its end, in two pieces: the second is empty unless
    /// the module's name is long.
    std::string_view text() const { return {m_text.data(), m_length}; }
    std::string_view longName() const {
        return {m_longName, static_cast<std::size_t>(m_longName.GetLength())};
    }

  private:
    static constexpr std::size_t kMostName = 64;

    // Two numbers of up to 11 characters follow the moment.
    std::array<char, LogMoment::kMaxLength + 32 + kMostName> m_text;
    std::size_t m_length = 0;
    CString m_longName;
};
