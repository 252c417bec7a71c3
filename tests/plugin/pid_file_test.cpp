#include "pid_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <string>

#include "child_process.h"
#include "row_name.h"
#include "sandbox_main.h"
#include "service_files.h"
#include "unique_fd.h"

namespace {

namespace fs = std::filesystem;

class PidFile : public testing::Test {
  protected:
    PidFile() {
        writePidFile("");
        removeServiceFiles();
    }
    ~PidFile() override { removeServiceFiles(); }
};

// The number.

struct Content {
    const char* rule;
    std::string text;
    int pid;
};

class PidFileContent : public PidFile, public testing::WithParamInterface<Content> {};

TEST_P(PidFileContent, IsReadAsOneDecimalNumber) {
    writePidFile(GetParam().text);
    EXPECT_EQ(readServicePid(), GetParam().pid);
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }
std::string zeros(std::size_t count) { return std::string(count, '0'); }

INSTANTIATE_TEST_SUITE_P(
    Numbers, PidFileContent,
    testing::Values(Content{"Plain", "42", 42}, Content{"WithLineEnd", "42\n", 42},
                    Content{"WithDosLineEnd", "42\r\n", 42}, Content{"LeadingZeros", "007", 7},
                    Content{"EveryLeadingSpace", " \t\n\v\f\r42", 42},
                    Content{"PlusSign", " +42abc", 42}, Content{"MinusSign", "-1", -1},
                    Content{"MinusAndMore", "-42 7", -42}, Content{"TwoNumbers", "4 2", 4},
                    Content{"Hexadecimal", "0x10", 0}, Content{"Fraction", "4.2", 4},
                    Content{"EndsAtAZeroByte", std::string("4\0002", 3), 4},
                    Content{"LargestInt", "2147483647", INT_MAX},
                    Content{"SmallestInt", "-2147483648", INT_MIN},
                    Content{"SmallestButOne", "-2147483647", -INT_MAX}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    NoNumberIsZero, PidFileContent,
    testing::Values(Content{"Empty", "", 0}, Content{"Blanks", " \n\t", 0},
                    Content{"Word", "abc", 0}, Content{"WordThenNumber", "pid 42", 0},
                    Content{"LoneMinus", "-", 0}, Content{"LonePlus", "+\n", 0},
                    Content{"TwoSigns", "+-42", 0}, Content{"SignThenBlank", "- 42", 0},
                    Content{"ZeroByteFirst", std::string("\00042", 3), 0},
                    Content{"HighByte", "\xB2", 0}, Content{"ByteOrderMark", "\xEF\xBB\xBF 42", 0},
                    Content{"Rubbish", std::string(100000, '\xFF'), 0}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    TooLargeIsTheNearestInt, PidFileContent,
    testing::Values(Content{"OneMore", "2147483648", INT_MAX},
                    Content{"OneLess", "-2147483649", INT_MIN},
                    Content{"TwoToThe32AndOne", "4294967297", INT_MAX},
                    Content{"MinusTwoToThe32", "-4294967295", INT_MIN},
                    Content{"Beyond64Bits", "99999999999999999999", INT_MAX},
                    Content{"NegativeBeyond64Bits", "-99999999999999999999", INT_MIN},
                    Content{"AMegabyteOfDigits", std::string(1 << 20, '9'), INT_MAX}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(AnyLengthIsRead, PidFileContent,
                         testing::Values(Content{"DigitsAcrossABlock", blanks(62) + "1234", 1234},
                                         Content{"SignAtTheEndOfABlock", blanks(63) + "-5", -5},
                                         Content{"NumberAfterABlock", blanks(64) + "1234", 1234},
                                         Content{"NumberEndsWithABlock", blanks(60) + "1234", 1234},
                                         Content{"MuchSpace", blanks(1 << 20) + "42", 42},
                                         Content{"ManyZeros", zeros(1 << 20) + "42", 42}),
                         nameOfRow);

// Files that cannot be opened.

TEST_F(PidFile, ThatIsMissingGivesNothing) { EXPECT_EQ(readServicePid(), std::nullopt); }

TEST_F(PidFile, ThatLinksNowhereGivesNothing) {
    fs::create_symlink("/nowhere", kPidFile);
    EXPECT_EQ(readServicePid(), std::nullopt);
}

TEST_F(PidFile, ThatMayNotBeReadGivesNothingExceptToRoot) {
    writePidFile("42");
    fs::permissions(kPidFile, fs::perms::none);
    EXPECT_EQ(readServicePid(), sandboxUserIsRoot() ? std::optional(42) : std::nullopt);
}

// Files that are none.

TEST_F(PidFile, ThatIsAFolderHoldsNoNumber) {
    fs::create_directory(kPidFile);
    EXPECT_EQ(readServicePid(), 0);
}

TEST_F(PidFile, ThatNeverEndsHoldsNoNumber) {
    fs::create_symlink("/dev/zero", kPidFile);
    EXPECT_EQ(readServicePid(), 0);
}

TEST_F(PidFile, ThatIsAPipeIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(kPidFile, 0600), 0);
    EXPECT_EQ(readServicePid(), 0);  // nobody writes
    const UniqueFd both(open(kPidFile, O_RDWR | O_CLOEXEC));
    EXPECT_EQ(readServicePid(), 0);  // somebody may
    ASSERT_EQ(write(both.get(), "42", 2), 2);
    EXPECT_EQ(readServicePid(), 42);
}

// Every call.

TEST_F(PidFile, IsReadAfreshEachTime) {
    writePidFile("1");
    EXPECT_EQ(readServicePid(), 1);
    writePidFile("2");
    EXPECT_EQ(readServicePid(), 2);
    fs::remove(kPidFile);
    EXPECT_EQ(readServicePid(), std::nullopt);
}

TEST_F(PidFile, IsClosedAgain) {
    writePidFile("42");
    const int before = openDescriptors();
    readServicePid();
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
