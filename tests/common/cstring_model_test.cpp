// Random scripts of operations on a few texts that share blocks, beside a plain model of each.

#include <gtest/gtest.h>

#include "cstring_script.h"
#include "random_seed.h"

namespace {

TEST(CStringModel, RandomScriptsAgreeWithPlainStrings) {
    RandomChoices random(randomSeed());
    const int scripts = randomRounds(100000);
    for (int i = 0; i < scripts; ++i) {
        SCOPED_TRACE(testing::Message() << "script " << i);
        runCStringScript(random, 20);
        if (HasFailure()) return;
    }
}

}  // namespace
