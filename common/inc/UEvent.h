#pragma once

#include <pthread.h>

#include "WaitResult.h"

/// An event that threads wait for. Once set it stays signalled until `reset`, for an auto-reset
/// event too, on purpose: the two kinds differ in how many waiting threads a `set` wakes.
///
/// Any thread may call; the object must outlive every call. An event that cannot be made raises
/// `UException`; everything else that fails is only logged.
class UEvent {
  public:
    /// @param manualReset wake all waiting threads, rather than one.
    UEvent(bool manualReset, bool initialState);
    /// Requires: nobody waits.
    ~UEvent();
    UEvent(const UEvent&) = delete;
    UEvent& operator=(const UEvent&) = delete;

    /// Signals the event.
    void set();

    /// Takes the signal back.
    void reset();

    /// Waits up to `timeout` milliseconds for the event to be signalled.
    /// @return kWaitAcquired, kWaitTimedOut or kWaitFailed.
    unsigned int wait(unsigned int timeout);

  private:
    pthread_mutex_t m_mutex;
    pthread_cond_t m_condition;
    bool m_manualReset;
    bool m_signaled;
    unsigned int m_waiters = 0;
};
