#pragma once

#include "AutoMemory.h"
#include "CString.h"

/// Text as bytes of one encoding or another, by the C library's current locale. Any thread may
/// call. What cannot be converted raises `UException` and leaves `out` alone, as does an empty
/// text, whose result is 0.

/// Modes of `StringToByteStream`.
constexpr int kStreamAsIs = 0;       ///< the text's own bytes
constexpr int kStreamConverted = 1;  ///< to wide characters and back; so is any mode not named
constexpr int kStreamWide = 2;       ///< wide characters of 4 bytes

/// Puts `text` into a new block of `out`, which is longer than the text and ends in zeros.
/// @return the number of bytes that the text takes.
unsigned int StringToByteStream(const CString& text, AutoMemory& out, int mode);

/// As above, from wide text; a null one counts as empty, and the mode is not used.
unsigned int StringToByteStream(const wchar_t* text, AutoMemory& out, int mode);
