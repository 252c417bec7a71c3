#pragma once

#include <pthread.h>

#include <cerrno>
#include <ctime>

#include "SourcePlace.h"
#include "WaitResult.h"

// What the synchronisation classes have in common: calls whose failure is raised or logged, the
// making of their locks, and the wait for a condition.

/// Raises what a POSIX call gave, unless that is 0.
void raiseFailure(int error, const char* message, SourcePlace where = SourcePlace::current());

/// Logs what a POSIX call gave, unless that is 0. @return whether it is 0.
bool logFailure(int error, const char* message, SourcePlace where = SourcePlace::current());

/// Whether a lock that cannot be made recursive is an error.
enum class RecursiveType { wanted, required };

/// Makes a recursive lock; raises when that fails, and then nothing is left to destroy.
void makeRecursive(pthread_mutex_t& mutex, pthread_mutexattr_t& attributes, RecursiveType type);
void destroyRecursive(pthread_mutex_t& mutex, pthread_mutexattr_t& attributes);

/// A lock and the condition that is waited for under it.
struct Monitor {
    pthread_mutex_t& mutex;
    pthread_cond_t& condition;

    /// Raises when that fails, and then nothing is left to destroy.
    void make() const;
    void destroy() const;
    void lock() const {
        if (const int error = pthread_mutex_lock(&mutex)) {
            logFailure(error, "pthread_mutex_lock - failed to lock mutex");
        }
    }
    void unlock() const {
        if (const int error = pthread_mutex_unlock(&mutex)) {
            logFailure(error, "pthread_mutex_unlock - failed to unlock mutex");
        }
    }
};

/// The time of day `timeout` milliseconds from now.
timespec deadlineAfter(unsigned int timeout);

/// Locks, waits until `isReady()` or the time is out, calls `onReady` if it is, and unlocks.
/// `waiters` counts the threads that wait.
template <class IsReady, class OnReady>
unsigned int waitUntil(const Monitor& monitor, unsigned int& waiters, unsigned int timeout,
                       IsReady isReady, OnReady onReady) {
    const bool limited = timeout != 0 && timeout != kWaitForever;
    const timespec deadline = limited ? deadlineAfter(timeout) : timespec{};
    monitor.lock();
    int error = timeout == 0 ? ETIMEDOUT : 0;
    if (timeout != 0 && !isReady()) {
        ++waiters;
        do {
            error = limited ? pthread_cond_timedwait(&monitor.condition, &monitor.mutex, &deadline)
                            : pthread_cond_wait(&monitor.condition, &monitor.mutex);
        } while (!isReady() && error != ETIMEDOUT);
        --waiters;
    }
    const bool ready = isReady();
    if (ready) onReady();
    monitor.unlock();
    if (ready) return kWaitAcquired;
    return error == ETIMEDOUT ? kWaitTimedOut : kWaitFailed;
}
