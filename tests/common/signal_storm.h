#pragma once

#include <signal.h>
#include <sys/time.h>

/// A signal every millisecond while it lives.
class SignalStorm {
  public:
    SignalStorm() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &m_oldAction);
        const itimerval often{{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~SignalStorm() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &m_oldAction, nullptr);
    }

  private:
    struct sigaction m_oldAction {};
};
