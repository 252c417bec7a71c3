#pragma once

// Case helpers over NUL-terminated 8-bit texts.
//
// The two converters follow the C library's current locale, the two comparisons fold 'A' to 'Z'
// only: the asymmetry is kept on purpose. No state; each text belongs to the caller.

/// Converts `text` to upper case in place, by `islower` and `toupper`. Null is left alone.
/// @return `text`.
char* _strupr(char* text);

/// Converts `text` to lower case in place, by `isupper` and `tolower`. Null is left alone.
/// @return `text`.
char* _strlwr(char* text);

/// Compares two texts with ASCII letters folded to lower case, bytes as unsigned numbers, up to
/// the first difference or the end of `a`. A null text counts as "".
/// @return the folded byte of `a` less the folded byte of `b` where the comparison stopped.
int _strcmpi(const char* a, const char* b);

/// The same as `_strcmpi`.
int _stricmp(const char* a, const char* b);
