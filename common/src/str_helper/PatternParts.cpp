#include "PatternParts.h"

#include <new>

namespace {

int countOfParts(const char* text, char delimiter, unsigned int flags) {
    if (text == nullptr) return 0;
    int pieces = 0;
    int delimiters = 0;
    char before = delimiter;
    for (; *text != '\0'; before = *text++) {
        if (*text == delimiter) {
            ++delimiters;
        } else if (before == delimiter) {
            ++pieces;
        }
    }
    return (flags & UStrings::kKeepDelimiters) != 0 ? pieces + delimiters : pieces;
}

}  // namespace

void splitParts(UStrings& parts, const char* text, char delimiter, unsigned int flags) {
    parts.Create(text, delimiter, flags);
    if (parts.getCount() != countOfParts(text, delimiter, flags)) throw std::bad_alloc();
}

CString joinParts(const char* first, const char* second) {
    CString trimmed(second);
    trimmed.TrimLeft();
    trimmed.TrimRight();
    if (trimmed.IsEmpty()) return first;
    CString joined;
    joined.Format("%s:%s", first, static_cast<const char*>(trimmed));
    return joined;
}
