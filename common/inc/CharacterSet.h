#pragma once

#include "CString.h"

/// @return whether `text` consists of one or more members of `set`, which is written as behind the
/// "%" of `sscanf`: "[a-z0-9]", "[^,]". A text longer than `maxLength`, one that does not begin
/// with a member, and a set written in any other way are refused, and that is logged. Any thread
/// may call; nothing is raised.
bool checkCharacterSet(const CString& text, const CString& set, unsigned long maxLength);
