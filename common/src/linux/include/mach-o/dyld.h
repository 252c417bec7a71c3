#pragma once

#include <cstdint>

// Where the running program lies, asked for as on macOS.

/// Writes the path of the process's executable, terminated, to the `*size` bytes at `path`.
/// @return 0; or -1 when the path does not fit, with the bytes needed in `*size`; or -1 with
/// `*size` unchanged when the path is not known.
extern "C" int _NSGetExecutablePath(char* path, std::uint32_t* size);
