#include "ScanSet.h"

#include <cstddef>

namespace {

std::size_t indexOf(char c) { return static_cast<unsigned char>(c); }

}  // namespace

std::optional<ScanSet> ScanSet::parse(const char* text) {
    if (*text++ != '[') return std::nullopt;
    const bool negated = *text == '^';
    if (negated) ++text;
    ScanSet set;
    const char* const first = text;
    // The NUL is nobody's member: no run goes past a text's end.
    while (*text != '\0' && (*text != ']' || text == first)) text = set.addMember(text, first);
    if (text[0] != ']' || text[1] != '\0') return std::nullopt;
    if (negated) set.m_members.flip().reset(0);
    return set;
}

// Adds the character at `at`, or the range that its "-" is in the middle of.
const char* ScanSet::addMember(const char* at, const char* first) {
    const bool isRange = *at == '-' && at != first && at[1] != ']' && at[1] != '\0' &&
                         indexOf(at[-1]) <= indexOf(at[1]);
    if (!isRange) {
        m_members.set(indexOf(*at));
        return at + 1;
    }
    for (std::size_t c = indexOf(at[-1]); c <= indexOf(at[1]); ++c) m_members.set(c);
    return at + 1;
}

std::size_t ScanSet::runOf(const char* text) const {
    std::size_t length = 0;
    while (m_members[indexOf(text[length])]) ++length;
    return length;
}
