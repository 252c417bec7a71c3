#pragma once

#include "CString.h"

/// The process and the system it runs on. Any thread may call any of these.

/// @return milliseconds by the time of day, the low 32 bits.
unsigned int GetTickCount();

/// @return the id of this process.
unsigned int GetCurrentProcessId();

/// @return a text that no other call returns, here or in another program of this machine: process
/// id, time of the process's first call and a count, as hexadecimal bytes in memory order joined by
/// "-". A process forked after the first call goes on with its parent's.
CString SGenerateID();

/// @return the C library's text for the error number `err`.
CString SGetErrorDescription(unsigned int err);

/// @return the C library's text for the calling thread's `errno`.
CString SGetLastError();

/// @return the value of the environment variable `name`, or `def` when it is not set or empty.
CString SGetEnvironmentVariable(const char* name, const char* def);

/// @return a block of lines that says what system this is; the argument is ignored.
CString SGetSystemInfo(unsigned int reserved);
