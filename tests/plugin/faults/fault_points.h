#pragma once

#include <cstddef>
#include <functional>
#include <string>

// Faults in the C library's calls, for programs that link the plug-in's object files: the linker
// sends each call named in kFaultPoints through here. Nothing fails unless a test says so.

/// Makes calls of the thread that made it fail while it lives. One at a time; a forked copy of the
/// process inherits it.
class Fault {
  public:
    /// The `nth` call of `call`, counted from 1, answers `result` and sets errno to `error`
    /// without being made; every later one is made.
    Fault(const std::string& call, int nth, int error, long result = -1);

    /// Runs `action` right before the `nth` call of `call`, which is made.
    Fault(const std::string& call, int nth, std::function<void()> action);

    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;
    ~Fault();

    /// How often the call has been asked for.
    int calls() const;
};

/// Makes the n-th allocation of this thread fail, whatever function makes it, and counts them.
class AllocationFault {
  public:
    /// `nth` counts from 1; 0 fails none and only counts.
    explicit AllocationFault(int nth);
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;
    ~AllocationFault();

    /// How many allocations have been asked for.
    int allocations() const;

    /// How many of them have not been given back.
    int live() const;
};
