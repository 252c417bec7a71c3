#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>

/// A format of plain "%s", "%d", "%u", "%x", "%c" and "%%" only, with its arguments: nearly every
/// message is one, and such a text is written in one pass, without a second reading of the format.
/// Keeps pointers into the format and to the text arguments; both must outlive it.
class PlainFormat {
  public:
    /// Reads a format and its arguments.
    /// @return false when the format holds anything else, or too many conversions; the object is
    /// then of no use.
    bool Read(const char* format, va_list args);

    /// @return the characters to reserve, by the rules of `EstimateFormat`.
    std::size_t Estimate() const { return m_estimate; }

    /// @return whether any text argument stands in the `size` bytes at `own`.
    bool TookOwnText(const char* own, std::size_t size) const;

    /// Writes the text, which ends at the first NUL character among the arguments, to `out`.
    /// Requires: room for the estimate. @return the end of what was written; no NUL is written.
    char* Write(char* out) const;

  private:
    // `kind` is the conversion's letter; a run of the format itself is of kind 's' too.
    struct Piece {
        const char* text;
        std::size_t length;
        unsigned int number;
        char kind;
    };

    bool Add(char kind, va_list& args);
    void AddText(const char* text, std::size_t length);

    std::array<Piece, 24> m_pieces;
    std::size_t m_count = 0;
    std::size_t m_estimate = 0;
};
