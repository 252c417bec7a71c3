#pragma once

#include <pthread.h>

/// A recursive lock: the thread that holds it may take it again, and releases it as often.
///
/// Any thread may call; the object must outlive every call. A lock that cannot be made raises
/// `UException`. Everything else that fails, such as an unlock by a thread that does not hold the
/// lock, is only logged.
class UCriticalSection {
  public:
    UCriticalSection();
    /// Requires: nobody holds the lock; otherwise that is logged.
    ~UCriticalSection();
    UCriticalSection(const UCriticalSection&) = delete;
    UCriticalSection& operator=(const UCriticalSection&) = delete;

    /// Takes the lock, however long that takes.
    void Lock() {
        if (const int error = pthread_mutex_lock(&m_mutex)) LockFailed(error);
    }

    /// Gives the lock back once.
    void Unlock() {
        if (const int error = pthread_mutex_unlock(&m_mutex)) UnlockFailed(error);
    }

    /// @return whether the lock could be taken at once.
    bool TryLock() { return pthread_mutex_trylock(&m_mutex) == 0; }

  private:
    static void LockFailed(int error);
    static void UnlockFailed(int error);

    pthread_mutex_t m_mutex;
    pthread_mutexattr_t m_attributes;
};
