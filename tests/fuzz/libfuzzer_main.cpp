// How libFuzzer runs a target: a failed expectation ends the process, so that the input is kept.

#include <gtest/gtest.h>

#include <cstdlib>

#include "fuzz_input.h"

namespace {

class EndAtFailure final : public testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        if (result.failed()) std::abort();
    }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** argv) {
    int count = 1;
    testing::InitGoogleTest(&count, *argv);
    // Behind the listener that prints what has failed.
    testing::UnitTest::GetInstance()->listeners().Append(new EndAtFailure);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input({reinterpret_cast<const char*>(data), size});
    fuzzOne(input);
    return 0;
}
