#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "choices.h"

/// What a fuzzer hands over, taken to pieces from front to back. Once it is used up, numbers are 0
/// and texts empty.
///
/// Texts can be read and written by eye: each ends at a "|", and a backslash takes the character
/// behind it as it is.
class FuzzInput final : public Choices {
  public:
    explicit FuzzInput(std::string_view bytes) : m_rest(bytes) {}

    bool isEmpty() const { return m_rest.empty(); }
    std::size_t size() const { return m_rest.size(); }

    /// Four bytes, the lowest first.
    std::uint32_t number() override;
    /// Made of one byte, or of four for a larger count.
    std::size_t below(std::size_t count) override;
    bool flag() { return below(2) == 1; }
    /// A text, NULs included.
    std::string text();
    /// A text without NULs.
    std::string line() { return text().c_str(); }
    /// All that is left.
    std::string rest();

  private:
    unsigned char byte();

    std::string_view m_rest;
};

/// The property of one target: each of its programs defines it. Properties are stated with
/// GoogleTest's expectations.
void fuzzOne(FuzzInput& input);
