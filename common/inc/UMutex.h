#pragma once

#include <pthread.h>

#include <ctime>

#include "WaitResult.h"

/// A recursive lock whose taking may be limited in time.
///
/// Any thread may call; the object must outlive every call. A lock that cannot be made raises
/// `UException`; a destructor's failure is logged.
class UMutex {
  public:
    /// @param initialOwner take the lock at once.
    explicit UMutex(bool initialOwner = false);
    /// Requires: nobody holds the lock; otherwise that is logged.
    virtual ~UMutex();
    UMutex(const UMutex&) = delete;
    UMutex& operator=(const UMutex&) = delete;

    /// Takes the lock within `timeout` milliseconds. A held lock is looked at every 16 ms, so a
    /// limited wait may last that much longer, one of 0 ms included; kept on purpose.
    /// @return kWaitAcquired, kWaitTimedOut or kWaitFailed.
    unsigned int Acquire(unsigned int timeout);

    /// Gives the lock back once.
    /// @return false, and the failure is logged, when the calling thread does not hold it.
    bool Release();

  private:
    pthread_mutex_t m_mutex;
    pthread_mutexattr_t m_attributes;
};

/// Locks `mutex` no later than the time of day `deadline`, for platforms whose locks know no limit:
/// tries every 16 ms. A deadline of zero means a single try.
/// @return 0, ETIMEDOUT, or what a try gave.
int xpthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline);
