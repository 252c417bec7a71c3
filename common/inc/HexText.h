#pragma once

#include "CString.h"

/// Bytes as hexadecimal text and back. Stateless, for any thread; null texts count as "".

/// Stores the value of the hexadecimal digit `c`, either case, in `out`.
/// @return false, and `out` unchanged, when `c` is none.
bool HexCharToNum(char c, unsigned char& out);

/// Converts pairs of digits to bytes in order; an odd last digit is ignored.
/// @return 0; or -1, with nothing written, when `out` has too little room; or -2 at the first pair
/// that is none, with the bytes before it written.
int HexToBin(const char* hex, unsigned char* out, unsigned int outSize);

/// As `HexToBin`, with the bytes stored from the last to the first.
int HexToBinReverse(const char* hex, unsigned char* out, unsigned int outSize);

/// Flags of `BinToHex`.
constexpr unsigned int kHexSpaced = 1;  ///< a blank behind each byte
constexpr unsigned int kHexDump = 2;    ///< lines of 16 bytes, their characters beside them

/// @return two lower-case digits for each of `len` bytes, laid out as `flags` say. A dump has the
/// characters 32 to 127, and "." for others, behind a column of 52; every line but the last ends
/// both columns with the separator of eight bytes, kept on purpose. Raises `std::length_error` when
/// no text is as long.
CString BinToHex(const unsigned char* data, unsigned int len, unsigned int flags);

/// @return each byte of `text` as "%" and two upper-case digits.
CString encodeToHex(const char* text);

/// @return each byte of `text` as two upper-case digits.
CString encodeToHexWithoutPercent(const char* text);
