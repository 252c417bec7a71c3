#pragma once

/// Network helpers. Stateless, for any thread.

/// Counts the ones of a netmask given as bytes. Each byte is judged by itself, on purpose: its ones
/// must come first, but a byte of zeros may stand before one with ones.
/// @param byteCount 0 to 16, so that IPv6 masks fit.
/// @param prefixLength receives the count.
/// @return 0; or -1, with nothing stored and one record in the log at level 1, when a pointer is
/// null, the count does not fit or a byte is none of a netmask. Raises nothing.
int mask2plen(const unsigned char* mask, int byteCount, unsigned char* prefixLength);
