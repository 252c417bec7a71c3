#pragma once

#include "CString.h"

/// What a client sends to the server before logon to identify itself, signed with a key that both
/// know. The key is compiled in; the build says where it comes from (ZERVA_PRELOGON_KEY_FILE).
///
/// Any thread may call these; nothing is kept and nothing is reported. Lack of memory comes out as
/// `std::bad_alloc`, a text beyond 2147483647 bytes as `std::length_error`.

/// @return the Base64 text, always 24 characters, of the HMAC-MD5 (RFC 2104) of `message`; null
/// counts as "". The token is not part of it, on purpose.
CString signMessage(const char* message, const char* token);

/// @return the Base64 text of the record
/// "session=...&device_info=...&agent_result=...&token=...&signature=...", whose signature covers
/// all before "&signature=". The texts are inserted as they are; null stands there as "(null)".
CString formatClientData(const char* session, const char* device_info, const char* agent_result,
                         const char* token);
