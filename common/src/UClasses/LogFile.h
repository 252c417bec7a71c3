#pragma once

#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <span>
#include <string_view>

/// Opens a log file by `fopen`'s modes. A file made here is the user's alone from the start, and
/// writing goes to its end whoever else writes to it. It is closed when a program starts. A named
/// pipe in its place is refused, and no other device holds the caller up.
/// @return the file, or null with the reason in `errno`.
std::FILE* openLogFile(const char* path, const char* mode);

/// What `writeToLogFile` takes in its second list at most.
inline constexpr std::size_t kMostLogTextPieces = 16;

/// Writes the pieces of `head` and then of `text` at once, past the stream's buffer, which is
/// always empty: they are with the system when this returns, in one call where the system takes
/// them so. A write that the limit on file sizes forbids fails before it begins, for the signal
/// that follows it would end the host.
/// @return how many bytes were written; `errno` says why when some were not.
std::size_t writeToLogFile(std::FILE* file, std::initializer_list<std::string_view> head,
                           std::span<const std::string_view> text = {});
