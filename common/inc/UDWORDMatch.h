#pragma once

#include "URootMatch.h"

/// Matches numbers from 0 to 4294967295 by a number ("80") or a range with both its ends
/// ("1000-2000"), in decimal, with white space around numbers or not.
///
/// Candidates are read as `toInt` reads them, but up to 4294967295; a negative number is the
/// unsigned one of the same 32 bits, and a text with a number of more bits never matches.
class UDWORDMatch final : public URootMatch {
  public:
    /// No pattern.
    UDWORDMatch() = default;
    /// Raises `UException` for what is no pattern.
    explicit UDWORDMatch(const char* pattern);

    /// The least and the greatest number that `setPattern` allows from now on; 0 and 4294967295
    /// until set.
    void setMin(unsigned int value) { m_minValue = value; }
    void setMax(unsigned int value) { m_maxValue = value; }

    int setPattern(const char* text) override { return _setPattern(text); }
    const char* getPattern() const override { return m_pattern; }
    bool match(const char* text) const override;
    bool matchAsDWORD(unsigned int value) const override {
        return m_state != -1 && m_low <= value && value <= m_high;
    }
    CString toString() const override { return m_pattern; }

  private:
    int _setPattern(const char* text);
    bool ReadBound(const char* text, unsigned int& value) const;

    CString m_pattern;
    int m_state = -1;  // 1: one number, which is both ends; 2: a range
    unsigned int m_low = 0;
    unsigned int m_high = 0;
    unsigned int m_maxValue = 4294967295U;
    unsigned int m_minValue = 0;
};
