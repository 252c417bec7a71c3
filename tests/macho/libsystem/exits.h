#pragma once

namespace macho::libsystem {

/// Runs the exit functions that lie between two addresses, the newest first, and forgets them.
void runExitFunctions(const void* begin, const void* end);

/// @return whether any image has asked for a call at the end of a thread.
bool hasThreadExitFunctions();

}  // namespace macho::libsystem
