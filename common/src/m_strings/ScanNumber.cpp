#include "ScanNumber.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

std::optional<int> SScanInt(const char* text) {
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (end == text) return std::nullopt;
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}
