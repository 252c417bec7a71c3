#pragma once

#include <string_view>
#include <vector>

#include "URootMatch.h"
#include "UStrings.h"

/// Matches text by a pattern with asterisks, as `StringHelper` says. An empty pattern, which is
/// also what a new matcher has, matches the empty text alone.
class UPatternMatch final : public URootMatch {
  public:
    UPatternMatch() = default;
    /// Raises `std::bad_alloc` alone.
    explicit UPatternMatch(const char* pattern) { _setPattern(pattern); }

    /// Every text is a pattern. Lack of memory raises `std::bad_alloc` and leaves an empty one.
    /// @return 0.
    int setPattern(const char* text) override { return _setPattern(text); }
    const char* getPattern() const override { return m_pattern; }
    bool match(const char* text) const override { return text != nullptr && MatchText(text); }
    /// @return whether the number's decimal text matches.
    bool matchAsDWORD(unsigned int value) const override;
    CString toString() const override { return m_pattern; }

  private:
    friend class UDNSMatch;
    friend class UExpressionMatch;

    int _setPattern(const char* text);
    // Requires: a NUL behind the text.
    bool MatchText(std::string_view text) const;

    CString m_pattern;
    UStrings m_parts;
    // The texts of m_parts and their lengths side by side: matching reads nothing else.
    std::vector<std::string_view> m_flatParts;
};
