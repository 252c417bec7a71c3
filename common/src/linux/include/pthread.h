#pragma once

// The system's threads, and the one call that macOS has beside them.

#include_next <pthread.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Stores the system-wide id of the calling thread, which `thread` names; 0 names it too.
/// Returns 0; EINVAL for a null `id`, ESRCH for any other thread.
int pthread_threadid_np(pthread_t thread, uint64_t* id);

#ifdef __cplusplus
}
#endif
