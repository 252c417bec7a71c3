#pragma once

#include <optional>

/// Reading numbers from text by the grammar of the C library's "%d": leading white space, an
/// optional sign, decimal digits; whatever follows is ignored. A number that does not fit counts
/// as the nearest one that does. Stateless, for any thread.

/// @return the number `text` begins with; nothing when it begins with none.
std::optional<int> SScanInt(const char* text);
