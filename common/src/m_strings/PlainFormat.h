#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <span>
#include <string_view>

/// A format of plain "%s", "%d", "%u", "%x", "%c" and "%%" only, with its arguments: nearly every
/// message is one, and such a text is written in one pass, without a second reading of the format.
/// Keeps pointers into the format and to the text arguments; both must outlive it.
class PlainFormat {
  public:
    PlainFormat() = default;
    PlainFormat(const PlainFormat&) = delete;
    PlainFormat& operator=(const PlainFormat&) = delete;

    /// Reads a format and its arguments.
    /// @return false when the format holds anything else, or too many conversions; the object is
    /// then of no use.
    bool Read(const char* format, va_list args);

    /// @return the characters to reserve, by the rules of `EstimateFormat`.
    std::size_t Estimate() const { return m_estimate; }

    /// @return whether any text argument stands in the `size` bytes at `own`.
    bool TookOwnText(const char* own, std::size_t size) const;

    /// @return the text, which ends at the first NUL character among the arguments, in pieces. They
    /// are good for as long as the object is.
    std::span<const std::string_view> Pieces() const { return {m_pieces.data(), m_count}; }

    /// Writes the text to `out`. Requires: room for the estimate.
    /// @return the end of what was written; no NUL is written.
    char* Write(char* out) const;

  private:
    static constexpr std::size_t kMostPieces = 16;
    // Of a conversion other than "%s": a sign and ten digits at most.
    static constexpr std::size_t kMostDigits = 11;

    bool Add(char kind, va_list& args);
    void AddPiece(std::string_view piece);
    void AddNumber(char kind, unsigned int number);

    std::array<std::string_view, kMostPieces> m_pieces;
    std::array<char, kMostPieces * kMostDigits> m_digits;
    std::size_t m_count = 0;
    std::size_t m_estimate = 0;
    // A NUL character was among the arguments: what follows it is not part of the text.
    bool m_ended = false;
};
