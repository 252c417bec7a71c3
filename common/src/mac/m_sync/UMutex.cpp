#include "UMutex.h"

#include <sys/time.h>

#include "PosixCall.h"

namespace {

constexpr long kPollNanoseconds = 16000000;

void sleepForPoll() {
    timespec rest{.tv_sec = 0, .tv_nsec = kPollNanoseconds};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

bool isPast(const timespec& deadline) {
    timeval now{};
    gettimeofday(&now, nullptr);
    if (now.tv_sec != deadline.tv_sec) return now.tv_sec > deadline.tv_sec;
    return now.tv_usec * 1000L > deadline.tv_nsec;
}

// Asks for `deadline()` only when the first try found the lock held: a free lock does not need to
// know the time.
template <class Deadline>
int timedLock(pthread_mutex_t* mutex, Deadline deadline) {
    int error = pthread_mutex_trylock(mutex);
    if (error != EBUSY) return error;
    const timespec limit = deadline();
    if (limit.tv_sec == 0 && limit.tv_nsec == 0) return ETIMEDOUT;
    do {
        sleepForPoll();
        if (isPast(limit)) return ETIMEDOUT;
        error = pthread_mutex_trylock(mutex);
    } while (error == EBUSY);
    return error;
}

}  // namespace

UMutex::UMutex(bool initialOwner) {
    makeRecursive(m_mutex, m_attributes, RecursiveType::required);
    if (initialOwner) Acquire(kWaitForever);
}

UMutex::~UMutex() { destroyRecursive(m_mutex, m_attributes); }

unsigned int UMutex::Acquire(unsigned int timeout) {
    const int error = timeout == kWaitForever
                          ? pthread_mutex_lock(&m_mutex)
                          : timedLock(&m_mutex, [timeout] { return deadlineAfter(timeout); });
    if (error == 0) return kWaitAcquired;
    return error == ETIMEDOUT ? kWaitTimedOut : kWaitFailed;
}

bool UMutex::Release() {
    return logFailure(pthread_mutex_unlock(&m_mutex),
                      "pthread_mutex_unlock - failed to release mutex");
}

int xpthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline) {
    return timedLock(mutex, [deadline] { return *deadline; });
}
