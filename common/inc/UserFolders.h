#pragma once

#include "CString.h"

/// The user's folders for settings and logs, and who owns what is made in them.
///
/// A process that runs as root on a user's behalf still hands the user what it makes. Nothing here
/// reports an error: a folder that cannot be made shows when a file in it does not open. Functions
/// that return a path raise `std::bad_alloc` when there is no memory for it, the others nothing.
/// All work from what is on disk at the moment of the call; any thread may call them.

/// @return the value of HOME when that is set, be it empty; else the home folder that the password
/// database has for the real user id; else the empty text.
CString getCurrentUserHomeFolder();

/// @return the home folder followed by `subPath`, which begins with "/".
/// With `create`, the last folder of a path where nothing exists is made: mode 0750, owned by the
/// owner of the home folder. Its parents are not made.
CString getUserFolderPath(const char* subPath, bool create);

/// @return `getUserFolderPath` of "/Library/Zerva", where the settings are.
CString getZervaFolderPath(bool create);

/// @return `getUserFolderPath` of "/Library/Logs/Zerva", where the logs are.
CString getZervaLogsFolderPath(bool create);

/// @return whether `path`, links followed, is there and is not a named pipe.
bool isFileExist(const char* path);

/// Sets the mode of `path` to 0600, or to 0644 when the process runs as root.
void setFilePermission(const CString& path);

/// Gives `path` to the user and group of `getCurrentUserIDGroupID`.
void setOwnerAndGroup(const CString& path);

/// Stores owner and group of the home folder, or the process's effective ids when there is no such
/// folder. Either pointer may be null.
void getCurrentUserIDGroupID(unsigned int* uid, unsigned int* gid);
