// The library, compiled for macOS, passes the tests of its core.

#include <gmock/gmock.h>

#include <cstdio>

#include "images.h"
#include "loader/macho_image.h"

namespace {

using macho::MachoImage;

TEST(LibraryImage, HasAStandInForEverythingThatItImports) {
    EXPECT_THAT(MachoImage(imagePath("library_test")).unbound(), testing::IsEmpty());
}

// In the emulator these take longer than all others together; they run in the Intel half.
#if defined(__aarch64__)
char g_filter[] = "--gtest_filter=-CStringModel.*:MatcherModel.*";
#else
char g_filter[] = "--gtest_filter=*";
#endif

TEST(LibraryImage, PassesItsTests) {
    const MachoImage image(imagePath("library_test"));
    using RunTests = int (*)(int, char**, int*);
    const auto run = reinterpret_cast<RunTests>(image.symbol("runTests"));
    ASSERT_NE(run, nullptr);
    char name[] = "library_test";
    char brief[] = "--gtest_brief=1";
    char* arguments[] = {name, brief, g_filter, nullptr};
    int passed = 0;
    std::fflush(nullptr);
    EXPECT_EQ(run(3, arguments, &passed), 0);
    EXPECT_GT(passed, 1150);
}

}  // namespace
