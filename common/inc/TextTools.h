#pragma once

#include "CString.h"

/// Splitting, trimming and replacing. Stateless, for any thread; null texts count as "". White
/// space is what the C library's `isspace` says it is.

/// Splits `text` at the first `sep`, or at the last with `fromRight`. Without one, `left` is the
/// whole text and `right` is empty. Both are trimmed of white space unless `noTrim`.
/// @return the index of the separator in `text`, or -1.
int SplitString(const char* text, CString& left, CString& right, char sep, bool noTrim = false,
                bool fromRight = false);

/// Splits `text` at its first "=", and trims both parts.
/// @return false, with nothing stored, when there is no "=" or it is the first character.
bool ParseNameValue(const char* text, CString& name, CString& value);

/// @return `s` without up to `max` leading `ch`.
CString TrimLeft(const CString& s, char ch, unsigned int max);

/// @return `s` without up to `max` trailing `ch`.
CString TrimRight(const CString& s, char ch, unsigned int max);

/// @return `s` without up to `max` leading `left` and up to `max` trailing `right`; a NUL `right`
/// means the same as `left`.
CString Trim(const CString& s, char left, char right, unsigned int max);

/// @return `s` without one enclosing pair such as quotes.
CString TrimOnce(const CString& s, char left, char right);

/// @return `text` without its carriage returns and line feeds.
CString stripCR(const char* text);

/// @return a copy of `s` with every occurrence replaced.
CString SReplace(const CString& s, const char* oldText, const char* newText);
CString SReplace(const CString& s, char oldChar, char newChar);

/// Replaces occurrences of `oldText` in place. After each, the search goes on behind as many
/// characters of the new text as `oldText` has, so a shorter `newText` hides what directly follows;
/// kept on purpose. An empty `oldText` occurs nowhere.
/// @return 0; or 4294967295, with `text` unchanged, when the result would be longer than `text`.
unsigned int wcsreplace(wchar_t* text, const wchar_t* oldText, const wchar_t* newText);
