#include "UDNSMatch.h"

#include <utility>

#include "PatternParts.h"
#include "UGuarded.h"
#include "URaise.h"

UDNSMatch::UDNSMatch(const char* pattern) {
    if (_setPattern(pattern) != 0) {
        URaise("UDNSMatch::UDNSMatch()", "invalid pattern", pattern);
    }
}

int UDNSMatch::_setPattern(const char* text) {
    m_state = -1;
    const CString before(std::move(m_pattern));  // the new pattern may stand in it
    return UGuarded("UDNSMatch::setPattern() - EXCEPTION", [&] {
        UStrings parts;
        splitParts(parts, text, ':', 0);
        CString host(parts.getItem(0));
        if (host.IsEmpty() || host.FindOneOf(" \t\n\v\f\r") >= 0) {
            URaise("UDNSMatch::setPattern()", "invalid host part", text);
        }
        host.MakeLower();
        m_host.setPattern(host);
        m_pattern = text;
        m_state = 1;
    });
}

bool UDNSMatch::match(const char* text) const {
    if (text == nullptr) return false;
    CString lower(text);
    lower.MakeLower();
    return MatchLowerCase(static_cast<const char*>(lower));
}

int UDNSMatch::normalize(const char* text, CString& out, char /*delimiter*/) const {
    return UGuarded("UDNSMatch::normalize() - EXCEPTION", [&] {
        UDNSMatch probe;
        if (probe.setPattern(text) != 0) {
            URaise("UDNSMatch::normalize()", "wrong pattern", text);
        }
        UStrings parts;
        splitParts(parts, text, ':', 0);
        out = joinParts(probe.m_host.getPattern(), parts.getItem(1));
    });
}
