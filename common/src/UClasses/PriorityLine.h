#pragma once

#include <array>
#include <cstddef>
#include <memory>

/// The text of an item behind its priority column, "%d,,,, %s": the first and the last of a line's
/// five fields; the three between them stay empty. Raises nothing: writing a log never does.
class PriorityLine {
  public:
    /// What a column needs at most, its terminator included.
    static constexpr std::size_t kMaxColumn = 24;

    /// Writes the column of `priority` to `out`. @return its end; no NUL is written.
    static char* writeColumn(char* out, int priority);

    /// A null `text` counts as "".
    PriorityLine(int priority, const char* text);
    PriorityLine(const PriorityLine&) = delete;
    PriorityLine& operator=(const PriorityLine&) = delete;

    /// @return the line, or null when there was no memory for it.
    const char* text() const { return m_line; }

  private:
    // Nearly every item fits here and so needs no memory of its own.
    std::array<char, 2048> m_short;
    std::unique_ptr<char[]> m_long;
    const char* m_line;
};
