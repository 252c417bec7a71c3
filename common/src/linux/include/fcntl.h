#pragma once

// The system's file control, and the one command that macOS has beside them.

#include_next <fcntl.h>

/// With argument 1, writes to the descriptor send no SIGPIPE, whatever it is. This system does not
/// know it and answers EINVAL.
#define F_SETNOSIGPIPE 73
