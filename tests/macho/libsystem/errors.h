#pragma once

namespace macho::libsystem {

/// A Mac's number for one of this system's errors (<sys/errno.h> of both), and back. Numbers that
/// only one of them has stay as they are.
int macError(int hostError);
int hostError(int macError);

}  // namespace macho::libsystem
