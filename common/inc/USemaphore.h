#pragma once

#include <pthread.h>

#include "WaitResult.h"

/// A count with a ceiling: taken down by `Acquire`, which waits while it is 0, and up by `Release`.
///
/// Any thread may call; the object must outlive every call. A semaphore that cannot be made raises
/// `UException`; everything else that fails is only logged.
class USemaphore {
  public:
    /// An initial count above the ceiling is accepted.
    USemaphore(unsigned int initialCount, unsigned int maxCount);
    /// Requires: nobody waits.
    virtual ~USemaphore();
    USemaphore(const USemaphore&) = delete;
    USemaphore& operator=(const USemaphore&) = delete;

    /// Takes the count down by one, waiting up to `timeout` milliseconds while it is 0.
    /// @return kWaitAcquired, kWaitTimedOut or kWaitFailed.
    unsigned int Acquire(unsigned int timeout);

    /// Takes the count up by one; at the ceiling the release is lost. @return true.
    bool Release();

  private:
    unsigned int m_count;
    unsigned int m_maxCount;
    pthread_mutex_t m_mutex;
    pthread_cond_t m_condition;
    unsigned int m_waiters = 0;
};
