#pragma once

#include "CString.h"

/// Numbers, flags and IPv4 addresses in text. Stateless, for any thread.
///
/// No function raises anything: a text that is not acceptable gives `def`, and what some find wrong
/// with it is logged. `ok`, unless null, says whether the text was acceptable. White space around a
/// text is ignored, and a null text is never acceptable. Numbers that do not fit count as the
/// nearest that do, unless said otherwise.

/// @return whether `text` consists of digits and "-" alone, in any order and number: "1-2" is one,
/// on purpose.
bool isNumber(const char* text);

/// The number that a text begins with for which `isNumber` holds; `def` when it begins with none.
int toInt(const char* text, int def = 0, bool* ok = nullptr);
/// As `toInt`, but 0 for a text that begins with none.
long long toINT64(const char* text, long long def = 0, bool* ok = nullptr);
/// As `toINT64`; a negative number wraps around, as in the C library.
unsigned long long toUINT64(const char* text, unsigned long long def = 0, bool* ok = nullptr);
/// As `toUINT64`; a number above 65535 is not acceptable.
unsigned short toUINT16(const char* text, unsigned short def = 0, bool* ok = nullptr);

/// A number of digits and "-" of up to 11 characters, or "0x" (either case) with up to 8
/// hexadecimal digits, behind which anything may stand: the prefix decides which. One that does not
/// fit is not acceptable.
unsigned int toDWORD(const char* text, unsigned int def = 0, bool* ok = nullptr);

/// "true" or "false", in either case of ASCII letters. The log knows a failure that is none of the
/// text's by the name of `toInt`; kept on purpose.
bool toBool(const char* text, bool def = false);

/// An address of four numbers of up to three digits, the first in the highest byte. Only the low
/// byte of each number counts. Numbers may have white space and a sign in front, as for "%3u".
unsigned int strIPtoDWORD(const char* text, unsigned int def = 0, bool* ok = nullptr);

/// @return the address with the lowest byte first: the inverse of `strIPtoDWORD` for addresses that
/// hold their first number there; kept on purpose.
CString IPv4toString(unsigned int addr);
