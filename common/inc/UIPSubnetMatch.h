#pragma once

#include "URootMatch.h"

/// Matches IPv4 addresses by the subnet that they are in: "10.1.2.0/24", "10.1.2.0/255.255.255.0".
/// What the pattern's address has beyond the netmask does not count. Candidates are texts that
/// `strIPtoDWORD` takes, or numbers with the first octet in the highest byte.
class UIPSubnetMatch final : public URootMatch {
  public:
    /// No pattern.
    UIPSubnetMatch() = default;
    /// Raises `UException` for what is no pattern.
    explicit UIPSubnetMatch(const char* pattern);

    int setPattern(const char* text) override { return _setPattern(text); }
    const char* getPattern() const override { return m_pattern; }
    bool match(const char* text) const override;
    bool matchAsDWORD(unsigned int value) const override {
        return m_state != -1 && (value & m_mask) == m_subnet;
    }
    CString toString() const override { return m_pattern; }

  private:
    int _setPattern(const char* text);

    CString m_pattern;
    int m_state = -1;  // 1: there is a pattern
    unsigned int m_subnet = 0;
    unsigned int m_mask = 0;
};
