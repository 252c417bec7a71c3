#pragma once

#include <gtest/gtest.h>

/// Lets allocations fail: programs that link `zerva_failing_memory` go through here for `malloc`,
/// `calloc`, `realloc` and `new`.

/// While it lives, the `n`-th allocation of this thread, counted from 1, fails, once, or it and all
/// that follow.
class FailingAllocation {
  public:
    enum Failures { once, fromThenOn };

    explicit FailingAllocation(int n, Failures failures = once);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// @return whether that many allocations have been asked for.
    bool happened() const;
};

/// Runs `operation` with its first allocation failing, then its second, until none fails; `check`
/// is called after each, with whether one failed.
template <class Operation, class Check>
void failingEach(Operation operation, Check check) {
    for (int n = 1;; ++n) {
        bool failed = false;
        {
            const FailingAllocation failing(n);
            operation();
            failed = failing.happened();
        }
        check(failed);
        if (!failed || testing::Test::HasFailure()) return;
    }
}
