// Calls with a variable number of arguments, from an image: they travel otherwise on a Mac.

#include <gmock/gmock.h>
#include <syslog.h>

#include "images.h"
#include "loader/macho_image.h"

namespace {

using macho::MachoImage;

struct Case {
    const char* function;
    const char* result;
    const char* printed = "";
    const char* logged = "";
};
constexpr Case kCases[] = {
    {"callSnprintf", "-1 two 3.5 4 5497558138880 6 77 8.250 nine  | 10 -11 12 -13 %"},
    {"callSnprintfWithWidths", "     7|ab   |3.14|abc|"},
    {"callSnprintfWithLongDoubles", "1.250000 2.5 1.250e+03 42 after"},
    {"callSnprintfWithTooLittleRoom", "cut 6 "},
    {"callVsnprintf", "1 two 3.5 4.5 5497558138880"},
    {"callAsprintf", "as 3 x 0.500000 15 "},
    {"callVasprintf", "va 7 0.25"},
    {"callThroughStreams", "2.500 1000.000 0x1p+0 -5 7 ff 0x10"},
    {"callThroughStreamsForReading", "2.5 3.5 31 12345678901 100 0x20 "},
    {"callPrintf", "", "1 two 3.5 4"},
    {"callVprintf", "", "vprintf 1 2.5"},
    {"callFprintf", "6 fp 2.75 ok"},
    {"callVfprintf", "vfp 1099511627776"},
    {"callSscanf", "10 12 -7 2.5 1.25 9.75 word in% 123456789012 77 -5 "},
    {"callVsscanf", "3 3 4 five "},
    {"callFscanf", "3 8 nine 10.5 "},
    {"callOpen", "1 0 416 1 "},
    {"callOpenat", "1 0 388 0 0 "},
    {"callFcntl", "0 0 1 1 0 1 "},
    {"callSyslog", "", "", "test: logged 1 2.5\n"},
    {"callExecl", "1 7 "}};

class VariadicCall : public testing::TestWithParam<Case> {};

TEST_P(VariadicCall, GetsItsArguments) {
    const MachoImage image(imagePath("variadic_calls"));
    const auto call = reinterpret_cast<const char* (*)()>(image.symbol(GetParam().function));
    ASSERT_NE(call, nullptr);
    openlog("test", LOG_PERROR, LOG_USER);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::string result = call();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), GetParam().printed);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), GetParam().logged);
    EXPECT_EQ(result, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(All, VariadicCall, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.function; });

TEST(VariadicCalls, AreAllOfThoseOfTheImageAndBound) {
    const MachoImage image(imagePath("variadic_calls"));
    EXPECT_THAT(image.unbound(), testing::IsEmpty());
    std::vector<std::string> tested;
    for (const Case& each : kCases) tested.emplace_back(each.function);
    EXPECT_THAT(image.exports(), testing::UnorderedElementsAreArray(tested));
}

}  // namespace
