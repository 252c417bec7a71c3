// The linker for macOS has no --wrap. Here the image has functions of its own under the platform's
// names, which the linker takes before libSystem's, and looks the platform's up.

#include <dlfcn.h>
#include <pthread.h>
#include <sys/time.h>

#include <atomic>
#include <cstdlib>
#include <ctime>

extern "C" {

// What finds the platform's function must not allocate or lock: no static that is made at first
// use. A call that nobody here puts something before is the platform's at once.
#define WRAP(Result, name, parameters, arguments)                                             \
    Result __real_##name parameters;                                                          \
    Result __real_##name parameters {                                                         \
        static constinit std::atomic<Result(*) parameters> real = nullptr;                    \
        if (real == nullptr)                                                                  \
            real = reinterpret_cast<Result(*) parameters>(dlsym(RTLD_NEXT, #name));           \
        return real.load() arguments;                                                         \
    }                                                                                         \
    Result __wrap_##name parameters;                                                          \
    __attribute__((weak)) Result __wrap_##name parameters { return __real_##name arguments; } \
    __attribute__((visibility("hidden"))) Result name parameters {                            \
        return __wrap_##name arguments;                                                       \
    }                                                                                         \
    static_assert(true)

WRAP(void*, malloc, (std::size_t size), (size));
WRAP(void*, calloc, (std::size_t count, std::size_t size), (count, size));
WRAP(void*, realloc, (void* block, std::size_t size), (block, size));

WRAP(int, pthread_mutexattr_init, (pthread_mutexattr_t * a), (a));
WRAP(int, pthread_mutexattr_settype, (pthread_mutexattr_t * a, int type), (a, type));
WRAP(int, pthread_mutexattr_destroy, (pthread_mutexattr_t * a), (a));
WRAP(int, pthread_mutex_init, (pthread_mutex_t * m, const pthread_mutexattr_t* a), (m, a));
WRAP(int, pthread_mutex_destroy, (pthread_mutex_t * m), (m));
WRAP(int, pthread_mutex_lock, (pthread_mutex_t * m), (m));
WRAP(int, pthread_mutex_trylock, (pthread_mutex_t * m), (m));
WRAP(int, pthread_mutex_unlock, (pthread_mutex_t * m), (m));
WRAP(int, pthread_cond_init, (pthread_cond_t * c, const pthread_condattr_t* a), (c, a));
WRAP(int, pthread_cond_destroy, (pthread_cond_t * c), (c));
WRAP(int, pthread_cond_wait, (pthread_cond_t * c, pthread_mutex_t* m), (c, m));
WRAP(int, pthread_cond_timedwait, (pthread_cond_t * c, pthread_mutex_t* m, const timespec* t),
     (c, m, t));
WRAP(int, pthread_cond_signal, (pthread_cond_t * c), (c));
WRAP(int, pthread_cond_broadcast, (pthread_cond_t * c), (c));
WRAP(int, gettimeofday, (timeval * now, void* zone), (now, zone));
WRAP(int, nanosleep, (const timespec* rest, timespec* left), (rest, left));

#undef WRAP
}
