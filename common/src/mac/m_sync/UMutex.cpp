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

}  // namespace

UMutex::UMutex(bool initialOwner) {
    makeRecursive(m_mutex, m_attributes, RecursiveType::required);
    if (initialOwner) Acquire(kWaitForever);
}

UMutex::~UMutex() { destroyRecursive(m_mutex, m_attributes); }

unsigned int UMutex::Acquire(unsigned int timeout) {
    int error = 0;
    if (timeout == kWaitForever) {
        error = pthread_mutex_lock(&m_mutex);
    } else {
        // A free lock does not need to know the time.
        error = pthread_mutex_trylock(&m_mutex);
        if (error == EBUSY) {
            const timespec deadline = deadlineAfter(timeout);
            error = xpthread_mutex_timedlock(&m_mutex, &deadline);
        }
    }
    if (error == 0) return kWaitAcquired;
    return error == ETIMEDOUT ? kWaitTimedOut : kWaitFailed;
}

bool UMutex::Release() {
    return logFailure(pthread_mutex_unlock(&m_mutex),
                      "pthread_mutex_unlock - failed to release mutex");
}

int xpthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline) {
    const bool singleTry = deadline->tv_sec == 0 && deadline->tv_nsec == 0;
    for (;;) {
        const int error = pthread_mutex_trylock(mutex);
        if (error != EBUSY) return error;
        if (singleTry) return ETIMEDOUT;
        sleepForPoll();
        if (isPast(*deadline)) return ETIMEDOUT;
    }
}
