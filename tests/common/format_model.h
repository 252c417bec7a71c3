#pragma once

#include "choices.h"

/// Formats one format and its arguments by `CString::FormatV` and by `vsnprintf`, cut at an
/// estimate that is reckoned in another way than the product's; text and room must agree.
void checkFormat(Choices& choices);
