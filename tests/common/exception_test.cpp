#include "UException.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>

#include "bare_log.h"
#include "process_log.h"
#include "record_log.h"

namespace {

const char* const kNull = nullptr;
const char* const kNullFormat =
    "UException::UException(LPCTSTR lpszMsg, ...) - template parameter is NULL";

void expectNothing(const UException& e, int code) {
    EXPECT_EQ(e.GetErrorMessage(), nullptr);
    EXPECT_EQ(e.GetFileName(), nullptr);
    EXPECT_EQ(e.GetFunctionName(), nullptr);
    EXPECT_EQ(e.GetLine(), 0U);
    EXPECT_EQ(e.GetErrorCode(), code);
    EXPECT_FALSE(e.isDefined());
}

void expectSame(const UException& a, const UException& b) {
    EXPECT_STREQ(a.GetErrorMessage(), b.GetErrorMessage());
    EXPECT_STREQ(a.GetFileName(), b.GetFileName());
    EXPECT_STREQ(a.GetFunctionName(), b.GetFunctionName());
    EXPECT_EQ(a.GetLine(), b.GetLine());
    EXPECT_EQ(a.GetErrorCode(), b.GetErrorCode());
}

TEST(UException, HasNoBaseAndItsDestructorIsItsOneVirtualOperation) {
    EXPECT_TRUE(std::has_virtual_destructor_v<UException>);
    EXPECT_TRUE(std::is_nothrow_destructible_v<UException>);
    // The table of virtual operations, three texts, two numbers.
    EXPECT_EQ(sizeof(UException), 4 * sizeof(void*) + 8);
    EXPECT_EQ(sizeof(UBreakException), sizeof(UException));
}

TEST(UException, DefaultHasNoTextsAndWritesNothing) {
    const RecordLog log;
    expectNothing(UException(), -1);
    expectNothing(UBreakException(), -1);
    EXPECT_TRUE(log.items().empty());
}

TEST(UException, WithAMessageAloneHasCodeMinusOneAndNoPlace) {
    const RecordLog log;
    const UException e("open failed: %d", 5);
    EXPECT_STREQ(e.GetErrorMessage(), "open failed: 5");
    EXPECT_EQ(e.GetErrorCode(), -1);
    EXPECT_TRUE(e.isDefined());
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , open failed: 5\n");
}

TEST(UException, WithACodeAloneLogsNoCode) {
    const RecordLog log;
    const UException e(5, "open failed");
    EXPECT_EQ(e.GetErrorCode(), 5);
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , open failed\n");
}

TEST(UException, WithAPlaceLogsIt) {
    const RecordLog log;
    const UException e(-1, "/UClasses", "UList::addObject", 12, "%s failed", "malloc");
    EXPECT_STREQ(e.GetFileName(), "/UClasses");
    EXPECT_STREQ(e.GetFunctionName(), "UList::addObject");
    EXPECT_EQ(e.GetLine(), 12U);
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, /UClasses, 12, UList::addObject, malloc failed\n");
}

TEST(UException, WithAPlaceAndACodeLogsTheCodeInHexadecimal) {
    const RecordLog log;
    const UException one(5, "/x.cpp", "f", 1, "failed");
    const UException two(-2, "/x.cpp", "f", 1, "failed");
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(log.items()[0], "1, /x.cpp, 1, f, (0x5) failed\n");
    EXPECT_EQ(log.items()[1], "1, /x.cpp, 1, f, (0xfffffffe) failed\n");
}

TEST(UException, AnyPartOfAPlaceIsAPlace) {
    const RecordLog log;
    const UException file(5, "/x.cpp", kNull, 0, "failed");
    const UException function(5, kNull, "f", 0, "failed");
    const UException line(5, kNull, kNull, 3, "failed");
    const UException none(5, kNull, kNull, 0, "failed");
    ASSERT_EQ(log.items().size(), 4U);
    EXPECT_EQ(log.items()[0], "1, /x.cpp, 0, , (0x5) failed\n");
    EXPECT_EQ(log.items()[1], "1, , 0, f, (0x5) failed\n");
    EXPECT_EQ(log.items()[2], "1, , 3, , (0x5) failed\n");
    EXPECT_EQ(log.items()[3], "1, , 0, , failed\n");
}

TEST(UException, IsLoggedAtAnyLevelAndKeepsPercentSigns) {
    RecordLog log(-5);
    const UException e("%s", "50% of %1");
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , 50% of %1\n");
}

TEST(UException, WithoutALogKeepsItsMessage) {
    EXPECT_STREQ(UException("failed").GetErrorMessage(), "failed");
}

TEST(UException, NullFormatGivesAFixedMessageAndIsLogged) {
    const RecordLog log;
    EXPECT_STREQ(UException(kNull).GetErrorMessage(), kNullFormat);
    EXPECT_STREQ(UException(7, kNull).GetErrorMessage(), kNullFormat);
    EXPECT_STREQ(UException(7, "f", "g", 1, kNull).GetErrorMessage(), kNullFormat);
    ASSERT_EQ(log.items().size(), 3U);
    EXPECT_EQ(log.items()[0], std::string("1, , 0, , ") + kNullFormat + "\n");
}

TEST(UException, MessageIsCutAt5119Characters) {
    const RecordLog log;
    const struct {
        std::size_t length;
        std::size_t stored;
    } rows[] = {{5118, 5118}, {5119, 5119}, {5120, 5119}, {10000, 5119}};
    for (const auto& row : rows) {
        const UException e("%s", std::string(row.length, 'x').c_str());
        EXPECT_EQ(e.GetErrorMessage(), std::string(row.stored, 'x'));
        EXPECT_EQ(log.items().back(), "1, , 0, , " + std::string(row.stored, 'x') + "\n");
    }
}

TEST(UException, MessageThatCannotBeFormattedEndsWhereThatFailed) {
    // The C locale has no such character.
    const RecordLog log;
    const UException e(5, "text %ls, more", L"\u20AC");
    EXPECT_STREQ(e.GetErrorMessage(), "text ");
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , text \n");
}

TEST(UException, NameOfMoreThan1000CharactersIsNotStored) {
    const std::string fits(1000, 'n');
    const std::string tooLong(1001, 'n');
    const UException kept(-1, fits.c_str(), fits.c_str(), 1, "x");
    EXPECT_EQ(kept.GetFileName(), fits);
    EXPECT_EQ(kept.GetFunctionName(), fits);
    const UException left(-1, tooLong.c_str(), tooLong.c_str(), 1, "x");
    EXPECT_EQ(left.GetFileName(), nullptr);
    EXPECT_EQ(left.GetFunctionName(), nullptr);
    EXPECT_STREQ(left.GetErrorMessage(), "x");
}

TEST(UException, CopyHasTextsOfItsOwnAndWritesNothing) {
    const UException e(5, "/x.cpp", "f", 1, "failed");
    const RecordLog log;
    const UException copy(e);
    expectSame(copy, e);
    EXPECT_NE(copy.GetErrorMessage(), e.GetErrorMessage());
    EXPECT_NE(copy.GetFileName(), e.GetFileName());
    EXPECT_NE(copy.GetFunctionName(), e.GetFunctionName());
    EXPECT_TRUE(log.items().empty());
}

TEST(UException, CopyMemberKeepsATextThatTheOtherHasNot) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    e.Copy(UException());
    EXPECT_STREQ(e.GetErrorMessage(), "failed");
    EXPECT_STREQ(e.GetFileName(), "/x.cpp");
    EXPECT_STREQ(e.GetFunctionName(), "f");
    EXPECT_EQ(e.GetLine(), 0U);
    EXPECT_EQ(e.GetErrorCode(), -1);
}

TEST(UException, AssignmentReplacesEverythingAndWritesNothing) {
    const UException e(5, "/x.cpp", "f", 1, "failed");
    UException target("other");
    const RecordLog log;
    target = e;
    expectSame(target, e);
    target = UException();
    expectNothing(target, -1);
    EXPECT_TRUE(log.items().empty());
}

TEST(UException, AssignmentToItselfChangesNothing) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    const char* const message = e.GetErrorMessage();
    const UException& self = e;
    e = self;
    EXPECT_EQ(e.GetErrorMessage(), message);
    EXPECT_EQ(e.GetErrorCode(), 5);
}

TEST(UException, AssignmentOfATextForgetsThePlaceAndGivesTheText) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    const char* const text = "other";
    const char* const result = e = text;
    EXPECT_EQ(result, text);
    EXPECT_STREQ(e.GetErrorMessage(), "other");
    EXPECT_NE(e.GetErrorMessage(), text);
    EXPECT_EQ(e.GetErrorCode(), -1);
    EXPECT_EQ(e.GetFileName(), nullptr);
    EXPECT_EQ(e.GetFunctionName(), nullptr);
    EXPECT_EQ(e.GetLine(), 0U);
}

TEST(UException, AssignmentOfANullTextLeavesNoMessage) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    const char* const result = e = kNull;
    EXPECT_EQ(result, nullptr);
    expectNothing(e, -1);
}

TEST(UException, AssignmentOfItsOwnMessageKeepsIt) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    e = e.GetErrorMessage();
    EXPECT_STREQ(e.GetErrorMessage(), "failed");
    EXPECT_EQ(e.GetFileName(), nullptr);
}

TEST(UException, AssignmentOfACodeForgetsThePlaceAndGivesTheCode) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    const int result = e = 7;
    EXPECT_EQ(result, 7);
    EXPECT_STREQ(e.GetErrorMessage(), "unknown exception");
    EXPECT_EQ(e.GetErrorCode(), 7);
    EXPECT_EQ(e.GetFileName(), nullptr);
    EXPECT_EQ(e.GetFunctionName(), nullptr);
    EXPECT_EQ(e.GetLine(), 0U);
}

TEST(UException, CleanupKeepsTheCode) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    e.Cleanup();
    expectNothing(e, 5);
}

TEST(UException, InitByZeroClearsTheCodeToo) {
    UException e;
    e.SetLine(3);
    e.InitByZero();
    expectNothing(e, 0);
}

TEST(UException, SettersReplaceTheirField) {
    UException e("message");
    EXPECT_TRUE(e.SetFileName("/x.cpp"));
    EXPECT_TRUE(e.SetFunctionName("f"));
    e.SetLine(9);
    EXPECT_STREQ(e.GetFileName(), "/x.cpp");
    EXPECT_STREQ(e.GetFunctionName(), "f");
    EXPECT_EQ(e.GetLine(), 9U);
    EXPECT_TRUE(e.SetFileName(kNull));
    EXPECT_TRUE(e.SetFunctionName(std::string(1001, 'x').c_str()));
    EXPECT_EQ(e.GetFileName(), nullptr);
    EXPECT_EQ(e.GetFunctionName(), nullptr);

    const char* const copy = e.CopyMessage("new");
    EXPECT_EQ(copy, e.GetErrorMessage());
    EXPECT_STREQ(copy, "new");
    EXPECT_EQ(e.CopyMessage(kNull), nullptr);
    EXPECT_FALSE(e.isDefined());
}

TEST(UException, SetterTakesItsOwnText) {
    UException e(5, "/x.cpp", "f", 1, "failed");
    e.SetFileName(e.GetFileName());
    e.CopyMessage(e.GetErrorMessage());
    EXPECT_STREQ(e.GetFileName(), "/x.cpp");
    EXPECT_STREQ(e.GetErrorMessage(), "failed");
}

TEST(HandleException, LogsTheDescriptionOfAStandardExceptionAtTheObjectsPlace) {
    UException e;
    e.SetFileName("/x.cpp");
    e.SetLine(3);
    const RecordLog log;
    try {
        throw std::runtime_error("what it says");
    } catch (...) {
        e.HandleException();
    }
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, /x.cpp, 3, , what it says\n");
}

TEST(HandleException, LogsAnythingElseAsUnknown) {
    const RecordLog log;
    try {
        throw 5;
    } catch (...) {
        UException().HandleException();
    }
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , Unknown exception\n");
}

TEST(HandleException, LogsALibraryExceptionAsUnknownToo) {
    const RecordLog log;
    try {
        throw UException();
    } catch (...) {
        UException().HandleException();
    }
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , Unknown exception\n");
}

TEST(HandleException, OutsideAHandlerDoesNothing) {
    const RecordLog log;
    UException().HandleException();
    EXPECT_TRUE(log.items().empty());
}

TEST(WriteToLog, SwallowsWhatTheLogRaises) {
    class RaisingLog : public BareLog {
      public:
        int WriteLogItem(const char* /*text*/) override { throw 5; }
    } log;
    const AsProcessLog asProcessLog(log);
    EXPECT_STREQ(UException("failed").GetErrorMessage(), "failed");
}

}  // namespace
