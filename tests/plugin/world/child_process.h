#pragma once

#include <sys/types.h>

#include <string>

/// A live process of a chosen short name that does nothing but wait; ended and collected at the
/// latest when the object goes.
class ChildProcess {
  public:
    enum class Group { kOurs, kItsOwn };

    /// Starts it; it runs under its name, in its process group, when the constructor returns.
    explicit ChildProcess(const std::string& name, Group group = Group::kOurs);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    pid_t pid() const { return m_pid; }

    /// Ends it without collecting it: it stays in the process table under its name.
    void makeZombie();

    /// Waits until it has ended and collects it. @return its wait status.
    int collect();

  private:
    pid_t m_pid = -1;
    bool m_collected = false;
};

/// @return the id of a process that has ended and been collected.
pid_t deadPid();

/// Waits until the process, anybody's child, is gone or only waits to be collected.
void awaitEnd(pid_t pid);

/// @return how many descriptors this process has open.
int openDescriptors();
