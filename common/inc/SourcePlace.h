#pragma once

#include "CString.h"

/// A place in the source code, for messages that name it. Holds a pointer to the compiler's own
/// text; nothing is owned, and any thread may read one.
struct SourcePlace {
    const char* file;
    unsigned int line;

    /// @return the place of the call.
    static constexpr SourcePlace current(const char* file = __builtin_FILE(),
                                         unsigned int line = __builtin_LINE()) {
        return {file, line};
    }
};

/// How messages name the source unit that `file` belongs to: "/" and the name of the unit's folder
/// ("/UClasses" for every file in common/src/UClasses), or of the file where it stands alone
/// ("/FIFOBuffer.cpp"). @return "" for a path without a "/".
CString sourceUnit(const char* file);
