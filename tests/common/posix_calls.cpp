#include "posix_calls.h"

#include <pthread.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

namespace {

constexpr std::size_t kCalls = static_cast<std::size_t>(PosixCall::end);

std::array<std::atomic<int>, kCalls> counts;

struct Failure {
    int error = 0;
    int times = 0;
};
thread_local std::array<Failure, kCalls> failures;
thread_local std::vector<timespec> deadlines;
thread_local std::vector<timespec> restsAskedFor;
thread_local timespec leftOver;
thread_local std::function<void()> actionInWait;
thread_local std::vector<timeval> timesToTell;
thread_local std::vector<PosixCall>* recorded = nullptr;

// Counts a call. @return the error that it is to give.
int noteCall(PosixCall call) {
    const auto index = static_cast<std::size_t>(call);
    ++counts[index];
    counts[index].notify_all();
    if (recorded != nullptr) recorded->push_back(call);
    if (failures[index].times == 0) return 0;
    --failures[index].times;
    return failures[index].error;
}

// A call that is carried out whatever it gives.
template <class Real>
int carryOut(PosixCall call, Real real) {
    const int error = noteCall(call);
    const int result = real();
    return error != 0 ? error : result;
}

// A call that is carried out unless it is to fail.
template <class Real>
int attempt(PosixCall call, Real real) {
    const int error = noteCall(call);
    return error != 0 ? error : real();
}

}  // namespace

void resetPosixCalls() {
    for (auto& count : counts) count = 0;
    failures = {};
    deadlines.clear();
    restsAskedFor.clear();
    timesToTell.clear();
}

void failPosixCall(PosixCall call, int error, int times) {
    failures[static_cast<std::size_t>(call)] = {error, times};
}

int countOf(PosixCall call) { return counts[static_cast<std::size_t>(call)]; }

std::vector<PosixCall> callsWithin(const std::function<void()>& action) {
    std::vector<PosixCall> calls;
    recorded = &calls;
    action();
    recorded = nullptr;
    return calls;
}

void awaitCount(PosixCall call, int count) {
    auto& calls = counts[static_cast<std::size_t>(call)];
    for (int seen = calls; seen < count; seen = calls) calls.wait(seen);
}

const std::vector<timespec>& waitDeadlines() { return deadlines; }

const std::vector<timespec>& rests() { return restsAskedFor; }

void inTheNextWait(std::function<void()> action) { actionInWait = std::move(action); }

void leaveOver(timespec rest) { leftOver = rest; }

void tellTimes(const std::vector<timeval>& times) { timesToTell = times; }

// The linker sends every call of NAME to __wrap_NAME, and __real_NAME to the platform.
extern "C" {

#define REAL(name, ...)             \
    int __real_##name(__VA_ARGS__); \
    int __wrap_##name(__VA_ARGS__)

REAL(pthread_mutexattr_init, pthread_mutexattr_t* a) {
    return attempt(PosixCall::mutexattrInit, [=] { return __real_pthread_mutexattr_init(a); });
}
REAL(pthread_mutexattr_settype, pthread_mutexattr_t* a, int type) {
    return carryOut(PosixCall::mutexattrSettype,
                    [=] { return __real_pthread_mutexattr_settype(a, type); });
}
REAL(pthread_mutexattr_destroy, pthread_mutexattr_t* a) {
    return carryOut(PosixCall::mutexattrDestroy,
                    [=] { return __real_pthread_mutexattr_destroy(a); });
}
REAL(pthread_mutex_init, pthread_mutex_t* m, const pthread_mutexattr_t* a) {
    return attempt(PosixCall::mutexInit, [=] { return __real_pthread_mutex_init(m, a); });
}
REAL(pthread_mutex_destroy, pthread_mutex_t* m) {
    return carryOut(PosixCall::mutexDestroy, [=] { return __real_pthread_mutex_destroy(m); });
}
REAL(pthread_mutex_lock, pthread_mutex_t* m) {
    return carryOut(PosixCall::mutexLock, [=] { return __real_pthread_mutex_lock(m); });
}
REAL(pthread_mutex_trylock, pthread_mutex_t* m) {
    return attempt(PosixCall::mutexTrylock, [=] { return __real_pthread_mutex_trylock(m); });
}
REAL(pthread_mutex_unlock, pthread_mutex_t* m) {
    return carryOut(PosixCall::mutexUnlock, [=] { return __real_pthread_mutex_unlock(m); });
}
REAL(pthread_cond_init, pthread_cond_t* c, const pthread_condattr_t* a) {
    return attempt(PosixCall::condInit, [=] { return __real_pthread_cond_init(c, a); });
}
REAL(pthread_cond_destroy, pthread_cond_t* c) {
    return carryOut(PosixCall::condDestroy, [=] { return __real_pthread_cond_destroy(c); });
}
REAL(pthread_cond_wait, pthread_cond_t* c, pthread_mutex_t* m) {
    return attempt(PosixCall::condWait, [=] { return __real_pthread_cond_wait(c, m); });
}
REAL(pthread_cond_timedwait, pthread_cond_t* c, pthread_mutex_t* m, const timespec* t) {
    deadlines.push_back(*t);
    if (const auto action = std::exchange(actionInWait, nullptr)) {
        __real_pthread_mutex_unlock(m);
        action();
        __real_pthread_mutex_lock(m);
    }
    return attempt(PosixCall::condTimedwait,
                   [=] { return __real_pthread_cond_timedwait(c, m, t); });
}
REAL(pthread_cond_signal, pthread_cond_t* c) {
    return carryOut(PosixCall::condSignal, [=] { return __real_pthread_cond_signal(c); });
}
REAL(pthread_cond_broadcast, pthread_cond_t* c) {
    return carryOut(PosixCall::condBroadcast, [=] { return __real_pthread_cond_broadcast(c); });
}
REAL(nanosleep, const timespec* rest, timespec* left) {
    restsAskedFor.push_back(*rest);
    const int error = noteCall(PosixCall::nanosleep);
    if (error == 0) return __real_nanosleep(rest, left);
    *left = leftOver;
    errno = error;
    return -1;
}
REAL(gettimeofday, timeval* now, void* zone) {
    noteCall(PosixCall::gettimeofday);
    if (timesToTell.empty()) return __real_gettimeofday(now, zone);
    *now = timesToTell.front();
    timesToTell.erase(timesToTell.begin());
    return 0;
}

#undef REAL
}
