#pragma once

#include <array>

#include "CArray.h"
#include "CString.h"

/// Base64 (RFC 4648, the standard alphabet with padding), without line breaks.
///
/// Encoding is exact. Decoding is tolerant: it takes the digits and nothing else, so padding, white
/// space and foreign characters are skipped wherever they stand, and what is left of a group at the
/// end gives the bytes that it completes. Nothing is reported; a null text counts as "".
///
/// Any thread may call. A result of 2147483647 bytes or more raises `std::length_error`, lack of
/// memory `std::bad_alloc`, both before anything has changed.
class CRFCBase64 {
  public:
    CRFCBase64() = delete;

    /// Appends the encoding of `len` bytes at `data`, which must not lie in `out` itself; nothing
    /// for null, or a `len` below 1. Room is made for exactly that.
    /// @return the number of characters appended.
    static int Encode(const unsigned char* data, int len, CString& out);
    /// @return the encoding of the text's bytes up to its NUL.
    static CString Encode(const char* text);

    // Each decodes up to the first NUL or, kept so on purpose, the first byte of 0x80 or above.

    /// Appends the decoded bytes to `out`. @return how many.
    static int Decode(const char* text, CArray<unsigned char, unsigned char>& out);
    /// Replaces `out` by the decoded bytes up to the first NUL among them.
    /// @return how many bytes were decoded, those behind that NUL included.
    static int Decode(const char* text, CString& out);
    /// @return the decoded bytes, NULs included.
    static CString Decode(const char* text);
    /// @return `createString` of the decoded bytes, which come from `codePage`.
    static CString Decode(const char* text, unsigned int codePage);

  protected:
    /// The digits by value, and the pad character behind them.
    static constexpr char g_digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
    /// The value of each digit, 127 for every other character; all 127 until the first decoding.
    static std::array<signed char, 256> g_xlate;
    /// Whether the digits are in `g_xlate`.
    static bool g_bInitialized;

  private:
    static const signed char* digitValues();
};
