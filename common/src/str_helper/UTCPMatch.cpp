#include "UTCPMatch.h"

#include <utility>

#include "Candidate.h"
#include "PatternParts.h"
#include "StrFormat.h"
#include "UGuarded.h"
#include "UIPAddress.h"
#include "URaise.h"

UTCPMatch::UTCPMatch() { m_port.setMax(65535); }

UTCPMatch::UTCPMatch(const char* pattern) : UTCPMatch() {
    if (_setPattern(pattern) != 0) {
        URaise("UTCPMatch::UTCPMatch()", "invalid pattern", pattern);
    }
}

void UTCPMatch::parse(const CString& pattern, CString& address, CString& netmask, CString& port) {
    UStrings parts;
    splitParts(parts, pattern, ':', 0);
    if (parts.getCount() > 2) URaise("UTCPMatch::parse()", "invalid pattern", pattern);
    const UIPv4Subnet subnet(parts.getItem(0));
    const CString addressText = subnet.getSubnet().toString();
    const CString netmaskText = subnet.getNetmask().toString();
    const CString portText = parts.getItem(1);
    address = addressText;
    netmask = netmaskText;
    port = portText;
}

int UTCPMatch::_setPattern(const char* text) {
    m_state = -1;
    const CString before(std::move(m_pattern));  // the new pattern may stand in it
    return UGuarded("UTCPMatch::setPattern() - EXCEPTION", [&] {
        constexpr const char* here = "UTCPMatch::setPattern()";
        const CString pattern(text);
        CString address, netmask, port;
        parse(pattern, address, netmask, port);
        const bool needsPort = pattern.Find(':') >= 0;
        if (m_network.setPattern(StrFormat("%1/%2").arg(address).arg(netmask)) != 0) {
            URaise(here, "invalid network part", pattern);
        }
        if (needsPort && port.IsEmpty()) URaise(here, "missing port part", pattern);
        if (needsPort && m_port.setPattern(port) != 0) URaise(here, "invalid port part", pattern);
        m_pattern = pattern;
        m_state = needsPort ? 2 : 1;
    });
}

bool UTCPMatch::match(const char* text) const { return MatchEndpoint(UEndpointText(text)); }

bool UTCPMatch::MatchEndpoint(const UEndpointText& endpoint) const {
    if (m_state == -1 || !endpoint.address || !m_network.matchAsDWORD(*endpoint.address)) {
        return false;
    }
    return m_state == 1 || (endpoint.port && m_port.matchAsDWORD(*endpoint.port));
}

int UTCPMatch::normalize(const char* text, CString& out, char /*delimiter*/) const {
    return UGuarded("UTCPMatch::normalize() - EXCEPTION", [&] {
        UTCPMatch probe;
        if (probe.setPattern(text) != 0) {
            URaise("UTCPMatch::normalize()", "wrong pattern", text);
        }
        out = joinParts(probe.m_network.getPattern(),
                        probe.m_state == 2 ? probe.m_port.getPattern() : nullptr);
    });
}
