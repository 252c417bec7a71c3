#pragma once

#include <csignal>

/// While it lives, a write to a pipe or socket of ours that nobody reads any more fails with EPIPE
/// instead of ending the browser with SIGPIPE. The browser's own signals are left alone: only this
/// thread's mask changes, and a signal that was pending before stays so.
class SigpipeGuard {
  public:
    explicit SigpipeGuard(int fd);
    ~SigpipeGuard();
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

  private:
    sigset_t m_previousMask;
    bool m_wasPending;
};
