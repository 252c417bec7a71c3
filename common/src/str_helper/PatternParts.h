#pragma once

#include "UStrings.h"

/// Taking patterns, expressions and candidates to pieces and putting patterns together.

/// Splits `text` as `UStrings::fromString` does; raises `std::bad_alloc` where that leaves a piece
/// out for lack of memory, and with it a condition.
void splitParts(UStrings& parts, const char* text, char delimiter, unsigned int flags);

/// @return "first:second", the second without white space around it; `first` alone when nothing is
/// left of the other, or it is null.
CString joinParts(const char* first, const char* second);
