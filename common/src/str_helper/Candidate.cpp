#include "Candidate.h"

#include <climits>

#include "NumberText.h"
#include "PatternParts.h"

// toInt's reading for all 32 bits, signed or not.
std::optional<unsigned int> numberOf(const char* text) {
    bool ok = false;
    const long long number = toINT64(text, 0, &ok);
    if (!ok || number < INT_MIN || number > UINT_MAX) return std::nullopt;
    return static_cast<unsigned int>(number);
}

std::optional<unsigned int> addressOf(const char* text) {
    bool ok = false;
    const unsigned int address = strIPtoDWORD(text, 0, &ok);
    if (!ok) return std::nullopt;
    return address;
}

UEndpointText::UEndpointText(const char* text) {
    UStrings parts;
    splitParts(parts, text, ':', 0);
    if (parts.getCount() != 2) return;
    address = addressOf(parts.getItem(0));
    port = numberOf(parts.getItem(1));
}
