#pragma once

#include <cstddef>

class PrintfArguments;

/// How many characters the string type reserves for a formatted text: its own reading of the
/// format, which knows one size letter and no more, so that an unknown conversion gets less room
/// than it would need and the text is cut. Kept as published.
/// @return the estimate; it never wraps.
std::size_t EstimateFormat(const char* format, PrintfArguments& args);
