#include "PosixCall.h"

#include <sys/time.h>

#include "LogRecord.h"
#include "StrFormat.h"
#include "SystemInfo.h"
#include "URaise.h"

void raiseFailure(int error, const char* message, SourcePlace where) {
    if (error == 0) return;
    URaise(URaisedIn("", where), message, error,
           SGetErrorDescription(static_cast<unsigned int>(error)));
}

bool logFailure(int error, const char* message, SourcePlace where) {
    if (error == 0) return true;
    try {
        writeLogRecord(1, where, "",
                       sfmt("%1, %2, %3", message, error,
                            SGetErrorDescription(static_cast<unsigned int>(error))));
    } catch (...) {
        // No memory for the text; the operation goes on as it does after any failure.
    }
    return false;
}

void makeRecursive(pthread_mutex_t& mutex, pthread_mutexattr_t& attributes, RecursiveType type) {
    raiseFailure(pthread_mutexattr_init(&attributes),
                 "pthread_mutexattr_init - failed to initialize mutexattr");
    try {
        const int error = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        if (type == RecursiveType::required) {
            raiseFailure(error,
                         "pthread_mutexattr_settype - failed to set PTHREAD_MUTEX_RECURSIVE on "
                         "mutexattr");
        }
        raiseFailure(pthread_mutex_init(&mutex, &attributes),
                     "pthread_mutex_init - failed to initialize mutex");
    } catch (...) {
        pthread_mutexattr_destroy(&attributes);
        throw;
    }
}

void destroyRecursive(pthread_mutex_t& mutex, pthread_mutexattr_t& attributes) {
    logFailure(pthread_mutex_destroy(&mutex), "pthread_mutex_destroy - failed to destroy mutex");
    logFailure(pthread_mutexattr_destroy(&attributes),
               "pthread_mutexattr_destroy - failed to destroy mutex attributes");
}

void Monitor::make() const {
    raiseFailure(pthread_mutex_init(&mutex, nullptr),
                 "pthread_mutex_init - failed to initialize mutex");
    try {
        raiseFailure(pthread_cond_init(&condition, nullptr),
                     "pthread_cond_init - failed to initialize condition variable");
    } catch (...) {
        pthread_mutex_destroy(&mutex);
        throw;
    }
}

void Monitor::destroy() const {
    logFailure(pthread_mutex_destroy(&mutex), "pthread_mutex_destroy - failed to destroy mutex");
    logFailure(pthread_cond_destroy(&condition),
               "pthread_cond_destroy - failed to destroy condition variable");
}

timespec deadlineAfter(unsigned int timeout) {
    constexpr long kNanosecondsInASecond = 1000000000;
    timeval now{};
    gettimeofday(&now, nullptr);
    const long nanoseconds = now.tv_usec * 1000L + static_cast<long>(timeout % 1000) * 1000000L;
    return {.tv_sec = now.tv_sec + static_cast<time_t>(timeout / 1000) +
                      nanoseconds / kNanosecondsInASecond,
            .tv_nsec = nanoseconds % kNanosecondsInASecond};
}
