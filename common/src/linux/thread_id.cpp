#include <pthread.h>
#include <unistd.h>

#include <cerrno>

int pthread_threadid_np(pthread_t thread, uint64_t* id) {
    if (id == nullptr) return EINVAL;
    if (thread != 0 && pthread_equal(thread, pthread_self()) == 0) return ESRCH;
    *id = static_cast<uint64_t>(gettid());
    return 0;
}
