#pragma once

#include <string>

#include "CString.h"

/// Values as text. Each function makes a text of its own; none keeps anything. Any thread may call
/// them; those that take wide text follow the C library's current locale.
///
/// A null text counts as "" where no fallback is given, and so does a null fallback. None raises
/// anything of its own: lack of memory comes out as `std::bad_alloc`, and as `UException` where a
/// wide text is converted.

/// @return the text formatted by `CString::FormatV`, whose estimate may cut it.
CString SFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// @return "0x0000000000000000" for null, else the pointer as "%p" prints it.
CString createString(const void* pointer);
/// @return a copy of `text`.
CString createString(const CString& text);
/// @return the first `length` bytes of `text` up to a NUL among them; all of it for a negative
/// length, and for 0 too, on purpose; `fallback` for a null text.
CString createString(const char* text, int length = -1, const char* fallback = "");
/// As above; the leading number is not used.
CString createString(unsigned int codePage, const char* text, int length, const char* fallback);
/// Converts the whole of `text` to the current locale's characters; `length` is not applied.
/// @return the text; `fallback` for a null text, and, with a record in the log at level 2, for one
/// that converts to nothing or not at all. An empty text is such a one, on purpose.
CString createString(const wchar_t* text, int length = -1, const char* fallback = "");
/// @return the number with six decimals, cut at 128 characters.
CString createString(float value);
CString createString(double value);
/// @return "true" or "false".
CString createString(bool value);
/// @return the character, or "" for NUL.
CString createString(char value);
/// @return the number in decimal.
CString createString(short value);
CString createString(int value);
CString createString(unsigned char value);
CString createString(unsigned short value);
CString createString(unsigned int value);
CString createString(long long value);
CString createString(unsigned long long value);
/// @return the low 32 bits in decimal, signed as the type is; kept on purpose.
CString createString(long value);
CString createString(unsigned long value);
/// @return the text up to its first NUL.
CString createString(const std::string& text);
CString createString(const std::wstring& text);

/// @return at most `limit` bytes of `text`; all of it for a limit of 0 or less, on purpose.
CString createStringLimit(const char* text, int limit);
/// @return the whole of `text`, converted: the limit is not applied.
CString createStringLimit(const wchar_t* text, int limit);

/// Appends the number in decimal, or the text. @return `target`.
CString& addToString(CString& target, int value);
CString& addToString(CString& target, unsigned int value);
CString& addToString(CString& target, unsigned long long value);
CString& addToString(CString& target, unsigned char value);
CString& addToString(CString& target, const char* text);
CString& addToString(CString& target, const CString& text);

/// @return the number in hexadecimal, as "0x%llx" prints it.
CString toHex(unsigned long long value);
