#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

// Debug output and validity checks behind the assertion and trace macros.
// Any thread may call any of these; no text is kept.

/// Where debug output goes, any combination of: 1 standard output (and assertions ask their caller
/// to break), 2 the system log. 2 until it is changed.
extern std::atomic<std::uint32_t> g_dwDebugFlags;

/// @return true when `s` is not null; `length` is not looked at.
bool AfxIsValidString(const char* s, int length = -1);

/// @return true when `p` is not null; `size` and `writable` are not looked at.
bool AfxIsValidAddress(const void* p, std::size_t size, bool writable = true);

/// Reports a failed assertion to the system log when flag 2 is set.
/// @return flag 1: non-zero asks the caller to break into the debugger.
std::uint32_t AfxAssertFailed(const char* expression, const char* file, unsigned int line,
                              const char* function);

/// Writes the process id and the formatted message where the flags say, cut at 10238 characters;
/// does nothing when no flag is set. A null format counts as "".
/// @return 0.
int AfxTrace(const char* format, ...) __attribute__((format(printf, 1, 2)));
