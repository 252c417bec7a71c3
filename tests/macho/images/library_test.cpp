// Runs the tests that are linked into this image.

#include <gmock/gmock.h>
#include <unistd.h>

#include "sandbox_main.h"

// The loader's program is in the sandbox already.
bool sandboxUserIsRoot() { return geteuid() == 0; }

extern "C" __attribute__((visibility("default"))) int runTests(int count, char** arguments,
                                                               int* passed) {
    testing::InitGoogleMock(&count, arguments);
    const int result = RUN_ALL_TESTS();
    *passed = testing::UnitTest::GetInstance()->successful_test_count();
    return result;
}
