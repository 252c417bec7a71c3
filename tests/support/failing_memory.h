#pragma once

/// Lets allocations fail: programs that link `zerva_failing_memory` go through here for `malloc`,
/// `calloc`, `realloc` and `new`.

/// While it lives, the `n`-th allocation of this thread, counted from 1, fails, once.
class FailingAllocation {
  public:
    explicit FailingAllocation(int n);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// @return whether that many allocations have been asked for.
    bool happened() const;
};
