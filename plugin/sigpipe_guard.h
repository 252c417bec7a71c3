#pragma once

#include <csignal>

/// While it lives, a write to a pipe or socket that nobody reads any more fails with EPIPE instead
/// of ending the browser with SIGPIPE. Only this thread is concerned, and a signal that was pending
/// before stays so.
class SigpipeGuard {
  public:
    SigpipeGuard();
    ~SigpipeGuard();
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

  private:
    sigset_t m_previousMask;
    bool m_wasPending;
};
