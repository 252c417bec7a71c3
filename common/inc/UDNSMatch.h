#pragma once

#include <string_view>

#include "UPatternMatch.h"

/// Matches host names, in whatever case, by a pattern with asterisks: "*.example.com".
///
/// A colon ends the pattern's host; what stands behind it is kept in the pattern and does not
/// count. A pattern without a host, or with white space in it, is none.
class UDNSMatch final : public URootMatch {
  public:
    /// No pattern.
    UDNSMatch() = default;
    /// Raises `UException` for what is no pattern.
    explicit UDNSMatch(const char* pattern);

    int setPattern(const char* text) override { return _setPattern(text); }
    const char* getPattern() const override { return m_pattern; }
    bool match(const char* text) const override;
    /// @return false: no number is a host name.
    bool matchAsDWORD(unsigned int /*value*/) const override { return false; }
    /// Writes a pattern as "host:port", the host in lower case, the port without white space around
    /// it; without ":port" when there is none. Further parts are dropped. What `setPattern` would
    /// refuse is a failure.
    int normalize(const char* text, CString& out, char delimiter) const override;
    CString toString() const override { return m_pattern; }

  private:
    friend class UExpressionMatch;

    int _setPattern(const char* text);
    // Requires: a NUL behind the text.
    bool MatchLowerCase(std::string_view text) const {
        return m_state != -1 && m_host.MatchText(text);
    }

    CString m_pattern;
    int m_state = -1;      // 1: there is a pattern
    UPatternMatch m_host;  // in lower case
};
