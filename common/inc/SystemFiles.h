#pragma once

#include "CString.h"

/// Files that the system gives a process: its own module, and temporary ones. Any thread may call;
/// failures raise `UException`.

/// @return the full path of the running program, without "." and ".." in it. The handle is not
/// used: whatever module asks, the program is meant.
CString SGetModuleFileName(void* module);

/// @return the folder of `SGetModuleFileName`, with a "/" at its end.
CString SGetModulePath(void* module);

/// @return the folder for temporary files.
CString SGetTempPath();

/// @return a path in the folder for temporary files where no file was a moment ago: one was made
/// there and deleted again. The arguments are not used.
CString SGetTempFileName(const char* path, const char* prefix, unsigned int unique);
