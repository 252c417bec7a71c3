#pragma once

#include "CString.h"

/// Paths as text. The separator is "/"; "\\" separates, too, where a path is taken apart. Any
/// thread may call; null texts count as "" unless said otherwise.

/// Splits `path` at its last separator: `name` is what follows, `dir` what precedes and "/".
/// Without a separator `dir` is empty; and when the name is "." or "..", which names a folder,
/// `dir` is the whole path and `name` is empty.
/// @return false, with nothing stored, when `path` is null.
bool ParseFullPath(const char* path, CString& dir, CString& name);

/// @return the name, or the folder, of `path` as `ParseFullPath` gives it. When that fails, the
/// result is `def`, or a `UException` when that is null, which names the first of the two; kept on
/// purpose.
CString SGetFileName(const char* path, const char* def);
CString SGetFilePath(const char* path, const char* def);

/// @return whether the last character is a separator. The name is spelled so on purpose.
bool hasTralingSlash(const char* path);

/// @return `path` without one last separator.
CString stripTrailingSlash(const char* path);

/// @return `path` with a "/" at its end unless a separator stands there.
CString addTrailingSlash(const char* path);
