// A script of operations on a byte buffer of any capacity, with streams that refuse: it holds what
// a deque holds, its indices stay in range, and what fails changes nothing.

#include <gtest/gtest.h>

#include "fifo_model.h"
#include "fuzz_input.h"

void fuzzOne(FuzzInput& input) {
    FifoAndDeque pair(static_cast<int>(input.below(100)), input);
    for (int i = 0; i < 60 && !input.isEmpty() && !testing::Test::HasFailure(); ++i) pair.step();
}
