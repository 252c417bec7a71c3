#include "UDWORDMatch.h"

#include <utility>

#include "Candidate.h"
#include "PatternParts.h"
#include "UGuarded.h"
#include "URaise.h"

UDWORDMatch::UDWORDMatch(const char* pattern) {
    if (_setPattern(pattern) != 0) {
        URaise("UDWORDMatch::UDWORDMatch()", "invalid pattern", pattern);
    }
}

// One end of a range. A minus sign, which candidates may consist of, is none.
bool UDWORDMatch::ReadBound(const char* text, unsigned int& value) const {
    const std::optional<unsigned int> number = numberOf(text);
    if (!number || *text == '-' || *number < m_minValue || *number > m_maxValue) return false;
    value = *number;
    return true;
}

int UDWORDMatch::_setPattern(const char* text) {
    m_state = -1;
    const CString before(std::move(m_pattern));  // the new pattern may stand in it
    return UGuarded("UDWORDMatch::setPattern() - EXCEPTION", [&] {
        UStrings items;
        splitParts(items, text, '-', UStrings::kKeepDelimiters);
        const int count = items.getCount();
        unsigned int low = 0;
        unsigned int high = 0;
        const bool isValid = (count == 1 || count == 3) && ReadBound(items.getItem(0), low) &&
                             ReadBound(items.getItem(count - 1), high) && low <= high;
        if (!isValid) URaise("UDWORDMatch::setPattern()", "invalid pattern", text);
        m_pattern = text;
        m_low = low;
        m_high = high;
        m_state = count == 1 ? 1 : 2;
    });
}

bool UDWORDMatch::match(const char* text) const {
    const std::optional<unsigned int> number = numberOf(text);
    return number && matchAsDWORD(*number);
}
