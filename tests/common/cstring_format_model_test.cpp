// Random formats against vsnprintf, cut at an estimate that is reckoned in another way.

#include <gtest/gtest.h>

#include "format_model.h"
#include "random_seed.h"

namespace {

TEST(CStringFormatModel, EqualsVsnprintfCutAtTheEstimate) {
    RandomChoices random(randomSeed());
    for (int round = 0; round < randomRounds(40000); ++round) {
        checkFormat(random);
        if (testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace
