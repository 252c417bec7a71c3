#pragma once

#include <ostream>
#include <string>

#include "CString.h"

/// The whole text, embedded NULs included.
inline std::string textOf(const CString& s) {
    return {static_cast<const char*>(s), static_cast<std::size_t>(s.GetLength())};
}

/// How GoogleTest shows a CString.
inline void PrintTo(const CString& s, std::ostream* out) { *out << '"' << textOf(s) << '"'; }
