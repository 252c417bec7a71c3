#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>

#include "errors.h"
#include "symbol_table.h"

// A Mac's thread objects (<sys/_pthread/_pthread_types.h>, <pthread_impl.h>) begin with a word that
// tells what they are, or how to make them at first use. Behind it lies this system's mutex, or, as
// its condition is larger than a Mac's, a pointer to one.

namespace macho::libsystem {

namespace {

constexpr std::int64_t kStaticMutex = 0x32AAABA7;
constexpr std::int64_t kStaticErrorCheckMutex = 0x32AAABA1;
constexpr std::int64_t kStaticRecursiveMutex = 0x32AAABA2;
constexpr std::int64_t kStaticCondition = 0x3CB0B1BB;
constexpr std::int64_t kStaticOnce = 0x30B1BCBA;
constexpr std::int64_t kLive = 0x4C494E5558;

constexpr int kMacInvalid = 22;

struct MacMutex {
    std::atomic<std::int64_t> state;
    pthread_mutex_t mutex;
};
static_assert(sizeof(MacMutex) <= 64);

struct MacCondition {
    std::atomic<std::int64_t> state;
    pthread_cond_t* condition;
};
static_assert(sizeof(MacCondition) <= 48);

struct MacMutexAttribute {
    std::int64_t state;
    std::int64_t type;  // 0 normal, 1 error checking, 2 recursive, as here but for the order
};
static_assert(sizeof(MacMutexAttribute) == 16);

std::mutex g_making;

[[noreturn]] void failUninitialized(const char* what, const void* object) {
    std::fprintf(stderr, "%s %p was never initialised\n", what, object);
    std::abort();
}

int hostType(const MacMutex& mutex) {
    switch (mutex.state) {
        case kStaticMutex:
            return PTHREAD_MUTEX_NORMAL;
        case kStaticErrorCheckMutex:
            return PTHREAD_MUTEX_ERRORCHECK;
        case kStaticRecursiveMutex:
            return PTHREAD_MUTEX_RECURSIVE;
        default:
            failUninitialized("mutex", &mutex);
    }
}

// This system's mutex for one of the image's, made when it is first used.
pthread_mutex_t* live(MacMutex* mutex) {
    if (mutex->state == kLive) return &mutex->mutex;
    const std::lock_guard guard(g_making);
    if (mutex->state != kLive) {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, hostType(*mutex));
        pthread_mutex_init(&mutex->mutex, &attributes);
        mutex->state = kLive;
    }
    return &mutex->mutex;
}

pthread_cond_t* live(MacCondition* condition) {
    if (condition->state == kLive) return condition->condition;
    const std::lock_guard guard(g_making);
    if (condition->state != kLive) {
        if (condition->state != kStaticCondition) failUninitialized("condition", condition);
        condition->condition = new pthread_cond_t(PTHREAD_COND_INITIALIZER);
        condition->state = kLive;
    }
    return condition->condition;
}

int initAttribute(MacMutexAttribute* attribute) {
    *attribute = {0x4D545841, 0};
    return 0;
}

int setAttributeType(MacMutexAttribute* attribute, int type) {
    if (type < 0 || type > 2) return kMacInvalid;
    attribute->type = type;
    return 0;
}

int destroyAttribute(MacMutexAttribute* attribute) {
    *attribute = {};
    return 0;
}

int initMutex(MacMutex* mutex, const MacMutexAttribute* attribute) {
    constexpr std::int64_t kStates[] = {kStaticMutex, kStaticErrorCheckMutex,
                                        kStaticRecursiveMutex};
    mutex->state = kStates[attribute != nullptr ? attribute->type : 0];
    live(mutex);
    return 0;
}

int destroyMutex(MacMutex* mutex) {
    const int error = mutex->state == kLive ? pthread_mutex_destroy(&mutex->mutex) : 0;
    if (error == 0) mutex->state = 0;
    return macError(error);
}

int lockMutex(MacMutex* mutex) { return macError(pthread_mutex_lock(live(mutex))); }
int tryMutex(MacMutex* mutex) { return macError(pthread_mutex_trylock(live(mutex))); }
int unlockMutex(MacMutex* mutex) { return macError(pthread_mutex_unlock(live(mutex))); }

int initCondition(MacCondition* condition, const void* /*attributes*/) {
    condition->state = kStaticCondition;
    live(condition);
    return 0;
}

int destroyCondition(MacCondition* condition) {
    if (condition->state == kLive) {
        pthread_cond_destroy(condition->condition);
        delete condition->condition;
    }
    condition->state = 0;
    return 0;
}

int signalCondition(MacCondition* condition) {
    return macError(pthread_cond_signal(live(condition)));
}
int broadcastCondition(MacCondition* condition) {
    return macError(pthread_cond_broadcast(live(condition)));
}
int waitForCondition(MacCondition* condition, MacMutex* mutex) {
    return macError(pthread_cond_wait(live(condition), live(mutex)));
}
int waitUntil(MacCondition* condition, MacMutex* mutex, const timespec* end) {
    return macError(pthread_cond_timedwait(live(condition), live(mutex), end));
}

int waitFor(MacCondition* condition, MacMutex* mutex, const timespec* time) {
    constexpr long kSecond = 1'000'000'000;
    timespec end;
    clock_gettime(CLOCK_REALTIME, &end);
    end.tv_sec += time->tv_sec + (end.tv_nsec + time->tv_nsec) / kSecond;
    end.tv_nsec = (end.tv_nsec + time->tv_nsec) % kSecond;
    return waitUntil(condition, mutex, &end);
}

int runOnce(std::atomic<std::int64_t>* state, void (*function)()) {
    static std::recursive_mutex running;
    const std::lock_guard guard(running);
    if (*state == kStaticOnce) {
        function();
        *state = kLive;
    }
    return 0;
}

using MacKey = unsigned long;
int createKey(MacKey* key, void (*destroy)(void*)) {
    pthread_key_t own;
    const int error = pthread_key_create(&own, destroy);
    *key = own;
    return macError(error);
}
int deleteKey(MacKey key) { return macError(pthread_key_delete(static_cast<pthread_key_t>(key))); }

// Attributes are not carried over.
int createThread(pthread_t* thread, const void* /*attributes*/, void* (*run)(void*),
                 void* argument) {
    return macError(pthread_create(thread, nullptr, run, argument));
}

// The number of the calling thread, which is the only one that is ever asked for.
std::uint32_t threadPort(pthread_t /*thread*/) {
    std::uint64_t number = 0;
    pthread_threadid_np(pthread_self(), &number);
    return static_cast<std::uint32_t>(number);
}

}  // namespace

void addThreads(SymbolTable& table) {
    table.addCall("_pthread_mutexattr_init", initAttribute);
    table.addCall("_pthread_mutexattr_settype", setAttributeType);
    table.addCall("_pthread_mutexattr_destroy", destroyAttribute);
    table.addCall("_pthread_mutex_init", initMutex);
    table.addCall("_pthread_mutex_destroy", destroyMutex);
    table.addCall("_pthread_mutex_lock", lockMutex);
    table.addCall("_pthread_mutex_trylock", tryMutex);
    table.addCall("_pthread_mutex_unlock", unlockMutex);
    table.addCall("_pthread_cond_init", initCondition);
    table.addCall("_pthread_cond_destroy", destroyCondition);
    table.addCall("_pthread_cond_signal", signalCondition);
    table.addCall("_pthread_cond_broadcast", broadcastCondition);
    table.addCall("_pthread_cond_wait", waitForCondition);
    table.addCall("_pthread_cond_timedwait", waitUntil);
    table.addCall("_pthread_cond_timedwait_relative_np", waitFor);
    table.addCall("_pthread_once", runOnce);
    table.addCall("_pthread_key_create", createKey);
    table.addCall("_pthread_key_delete", deleteKey);
    table.addCall("_pthread_create", createThread);
    table.addCall("_pthread_threadid_np", pthread_threadid_np);
    table.addCall("_pthread_mach_thread_np", threadPort);
}

}  // namespace macho::libsystem
