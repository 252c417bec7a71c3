#pragma once

#include <sys/types.h>

#include <cstddef>

#include "unique_fd.h"

// A connection of the plug-in's own to the service, past the browser. Everything blocks and each
// failure leaves its reason in errno.

/// Opens a TCP socket that started programs do not inherit; empty on failure.
UniqueFd openServiceSocket();

/// Connects a socket to the service. @return false on failure.
bool connectToService(const UniqueFd& service);

/// Writes a block in one call; a service that has gone fails it with EPIPE and nothing worse.
/// @return the bytes written, or -1.
ssize_t writeToService(const UniqueFd& service, const void* block, size_t size);
