#pragma once

#include "UStrings.h"

/// The wildcard engine: patterns of literal text and asterisks, each of which stands for any text,
/// the empty one too. Letters match in their own case only. Stateless; any thread may call, while
/// nobody changes the parts.
///
/// Each literal takes its first occurrence and there is no way back, on purpose: matching takes one
/// pass over the text.
class StringHelper {
  public:
    StringHelper() = delete;

    /// Splits a pattern for `match`: `parts` becomes its literals and its asterisks, in order, and
    /// keeps its own delimiter. A null pattern counts as "". `pattern` must not be an item of
    /// `parts`. Lack of memory raises `std::bad_alloc`, and the parts are of no use then.
    static void prepareFilter(const char* pattern, UStrings& parts);

    /// @return whether `text` matches the pattern of these parts. Without parts only the empty text
    /// does; null never does.
    static bool match(const char* text, const UStrings& parts);

    /// Prints each item to standard output, as "-item-" on a line of its own.
    /// @return how many there are.
    static int printList(const UStrings& list);
};
