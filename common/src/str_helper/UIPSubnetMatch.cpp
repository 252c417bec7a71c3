#include "UIPSubnetMatch.h"

#include <utility>

#include "Candidate.h"
#include "UGuarded.h"
#include "UIPAddress.h"
#include "URaise.h"

UIPSubnetMatch::UIPSubnetMatch(const char* pattern) {
    if (_setPattern(pattern) != 0) {
        URaise("UIPSubnetMatch::UIPSubnetMatch()", "invalid pattern", pattern);
    }
}

int UIPSubnetMatch::_setPattern(const char* text) {
    m_state = -1;
    const CString before(std::move(m_pattern));  // the new pattern may stand in it
    return UGuarded("UIPSubnetMatch::setPattern() - EXCEPTION", [&] {
        const CString pattern(text);
        const UIPv4Subnet subnet(pattern);
        m_mask = subnet.getNetmask().getValue();
        m_subnet = subnet.getSubnet().getValue() & m_mask;
        m_pattern = pattern;
        m_state = 1;
    });
}

bool UIPSubnetMatch::match(const char* text) const {
    const std::optional<unsigned int> address = addressOf(text);
    return address && matchAsDWORD(*address);
}
