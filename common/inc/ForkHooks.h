#pragma once

/// For code that forks while other threads may be logging, and logs in the child: these three calls
/// around the fork, all on the thread that forks, keep the child from waiting for ever for a thread
/// that it does not have. They are called rather than registered with the system, for a module that
/// is unloaded could not take them back. They concern the library's own file log.

/// Before the fork: waits until nobody writes and holds everybody off.
void prepareLogForFork();

/// After the fork in the parent, also when the fork failed: lets the others go on.
void resumeLogInParent();

/// After the fork in the child: makes the log usable. Lines carry the parent's process id, the
/// child's thread id, and the time zone that was valid at the fork.
void resumeLogInChild();
