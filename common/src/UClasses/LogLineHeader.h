#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "CString.h"
#include "LogClock.h"

/// What begins a line of the file log: "2024-03-05, 7:08:09:010, 4321,77001,nevo_plugin, ".
class LogLineHeader {
  public:
    /// Fills it in for the calling thread and this moment.
    /// @return false when the C library cannot tell the local time.
    bool stamp(int processId, const CString& moduleName);

    /// @return the header, whose end is `moduleName()` and ", ".
    std::string_view beforeModule() const { return {m_text.data(), m_length}; }
    std::string_view moduleName() const {
        return {m_moduleName, static_cast<std::size_t>(m_moduleName.GetLength())};
    }

  private:
    // Two numbers of up to 11 characters follow the moment.
    std::array<char, LogMoment::kMaxLength + 32> m_text;
    std::size_t m_length = 0;
    CString m_moduleName;
};
