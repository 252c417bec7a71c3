// A script of operations on a few texts that share blocks: contents, terminators, reference counts
// and locks agree with plain strings after every one.

#include <algorithm>

#include "cstring_script.h"
#include "fuzz_input.h"

void fuzzOne(FuzzInput& input) {
    constexpr std::size_t kMost = 40;
    runCStringScript(input, static_cast<int>(std::min(input.size(), kMost)));
}
