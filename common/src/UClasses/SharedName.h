#pragma once

#include <cstddef>

#include "CString.h"

/// The names that log objects keep are set without the log's lock while writers read them. These
/// do it under one short lock of their own, which takes no other.

/// Makes `name` equal to `value`; null counts as "". Characters that stay the same stay in place.
void setSharedName(CString& name, const char* value);

/// @return `name`.
CString sharedName(const CString& name);

/// Copies the characters of `name` to `out` if there are at most `room` of them.
/// @return the end of the copy, or null when they are more.
char* copySharedName(const CString& name, char* out, std::size_t room);

/// The lock around a fork: taken before; given back in the parent; made anew in the child.
void lockSharedNames();
void unlockSharedNames();
void renewSharedNamesInChild();
