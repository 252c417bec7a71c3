#pragma once

#include <string>

#include "CString.h"

/// Text in URLs. Stateless, for any thread.

/// @return `text` with every byte for which the C library's `isalnum` is false, a blank included,
/// as "%" and two upper-case hexadecimal digits.
CString URLEncode(const CString& text);

/// @return `text` with "%" and two hexadecimal digits of either case replaced by the byte they
/// stand for; a "%" without them stays, and so does "+".
CString URLDecode(const CString& text);
std::string URLDecode_s(const std::string& text);

/// Schemes of `ParseURL_BASIC`.
constexpr unsigned int kSchemeHttp = 1;
constexpr unsigned int kSchemeHttps = 2;
constexpr unsigned int kSchemeFtp = 3;
constexpr unsigned int kSchemeFile = 4;
constexpr unsigned int kSchemeOther = ~0u;

/// Takes a URL to pieces. White space around it, the case of its scheme and user information are
/// ignored; an IPv6 host stays in its brackets. The port is the scheme's own (0 if none is known)
/// unless stated: one that does not fit counts as the nearest that does, one that is no number as
/// 0. The path begins with "/". In a file URL every "/" of host and path becomes "\\".
/// @param allowOtherSchemes take whatever stands before "://" as a scheme.
/// @return false, with nothing stored, when the scheme is not accepted.
bool ParseURL_BASIC(const char* url, unsigned int& scheme, CString& host, CString& path,
                    unsigned int& port, bool allowOtherSchemes);
