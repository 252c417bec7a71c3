#include "PatternParts.h"

#include <new>

void splitParts(UStrings& parts, const char* text, char delimiter, unsigned int flags) {
    if (parts.fromString(text, delimiter, flags) != 0) throw std::bad_alloc();
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
