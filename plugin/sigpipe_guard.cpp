#include "sigpipe_guard.h"

#include <fcntl.h>

#include <cerrno>

namespace {

sigset_t sigpipeOnly() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool isSigpipePending() {
    sigset_t pending;
    sigemptyset(&pending);
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
}

}  // namespace

SigpipeGuard::SigpipeGuard(int fd) : m_wasPending(isSigpipePending()) {
    // macOS sends the signal to the process, past this thread's mask, unless the descriptor forbids
    // it. Where the command is not known the signal goes to the thread, and the mask is enough.
    fcntl(fd, F_SETNOSIGPIPE, 1);
    const sigset_t sigpipe = sigpipeOnly();
    pthread_sigmask(SIG_BLOCK, &sigpipe, &m_previousMask);
}

SigpipeGuard::~SigpipeGuard() {
    const int savedErrno = errno;
    if (!m_wasPending && isSigpipePending()) {
        const sigset_t sigpipe = sigpipeOnly();
        int signal = 0;
        sigwait(&sigpipe, &signal);
    }
    pthread_sigmask(SIG_SETMASK, &m_previousMask, nullptr);
    errno = savedErrno;
}
