#pragma once

#include <cstring>
#include <string_view>

/// Matches `text`, behind whose last character a NUL stands, against `count` parts of a pattern.
/// @param partAt gives each part by its index: "*", or a literal with a NUL behind it.
template <class PartAt>
bool matchWildcard(std::string_view text, int count, const PartAt& partAt) {
    const char* at = text.data();
    const char* const end = at + text.size();
    bool isAnchored = true;
    for (int i = 0; i < count; ++i) {
        const std::string_view part = partAt(i);
        if (part.size() == 1 && part.front() == '*') {
            isAnchored = false;
            continue;
        }
        if (static_cast<std::size_t>(end - at) < part.size()) return false;
        const bool isLast = i + 1 == count;
        if (!isAnchored) at = isLast ? end - part.size() : std::strstr(at, part.data());
        if (at == nullptr || std::memcmp(at, part.data(), part.size()) != 0) return false;
        at += part.size();
        isAnchored = true;
    }
    return !isAnchored || at == end;
}
