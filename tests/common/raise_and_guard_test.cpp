// The library's way to raise and to catch.

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>

#include "UGuarded.h"
#include "URaise.h"
#include "record_log.h"

namespace {

template <typename... Details>
std::string raised(const URaisedIn& in, const char* failed, const Details&... details) {
    try {
        URaise(in, failed, details...);
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        return e.GetErrorMessage();
    }
}

TEST(URaise, MessageHasOneToFourParts) {
    EXPECT_EQ(raised("f", "open() failed"), "EXCEPTION - open() failed");
    EXPECT_EQ(raised("f", "open() failed", ENOENT), "EXCEPTION - open() failed, 2");
    EXPECT_EQ(raised("f", "failed", 1, "two"), "EXCEPTION - failed, 1, two");
    EXPECT_EQ(raised("f", "failed", 1U, CString("two"), 3), "EXCEPTION - failed, 1, two, 3");
    EXPECT_EQ(raised("f", "%s%n", "%s"), "EXCEPTION - %s%n, %s");
}

TEST(URaise, PlaceIsTheSourceUnitTheFunctionAndTheLineOfTheCall) {
    const RecordLog log;
    unsigned int line = 0;
    try {
        line = __LINE__ + 1;
        URaise("UList::addObject", "failed", 5);
    } catch (const UException& e) {
        EXPECT_STREQ(e.GetFileName(), "/raise_and_guard_test.cpp");
        EXPECT_STREQ(e.GetFunctionName(), "UList::addObject");
        EXPECT_EQ(e.GetLine(), line);
    }
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, /raise_and_guard_test.cpp, " + std::to_string(line) +
                                  ", UList::addObject, EXCEPTION - failed, 5\n");
}

TEST(UGuarded, BodyThatEndsGivesZero) {
    const RecordLog log;
    bool ran = false;
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [&ran] { ran = true; }), 0);
    EXPECT_TRUE(ran);
    EXPECT_TRUE(log.items().empty());
}

TEST(UGuarded, BreakEndsTheBodyEarlyAndQuietly) {
    const RecordLog log;
    bool reached = false;
    EXPECT_EQ(UGuarded("work() - EXCEPTION",
                       [&reached] {
                           if (!reached) throw UBreakException();
                           reached = true;
                       }),
              0);
    EXPECT_FALSE(reached);
    EXPECT_TRUE(log.items().empty());
}

TEST(UGuarded, LibraryExceptionGivesItsCodeAndIsRecordedAtTheGuard) {
    const RecordLog log;
    const unsigned int line = __LINE__ + 1;
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw UException(7, "/x", "f", 1, "bad"); }), 7);
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(log.items()[0], "1, /x, 1, f, (0x7) bad\n");
    EXPECT_EQ(log.items()[1], "1, /raise_and_guard_test.cpp, " + std::to_string(line) +
                                  ", , EXCEPTION caught: work() - EXCEPTION\n");
}

TEST(UGuarded, MayRecordTheExceptionsOwnText) {
    const RecordLog log;
    EXPECT_EQ(UGuarded(
                  "toInt() - EXCEPTION", [] { URaise("toInt()", "bad", "4x"); },
                  UCaughtText::ofException),
              -1);
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(withoutLine(log.items()[1]),
              "1, /raise_and_guard_test.cpp, LINE, , EXCEPTION caught: EXCEPTION - bad, 4x\n");
}

TEST(UGuarded, OwnTextOfAnythingElseIsTheOperations) {
    const RecordLog log;
    EXPECT_EQ(UGuarded(
                  "toInt() - EXCEPTION", [] { throw 5; }, UCaughtText::ofException),
              -1);
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(withoutLine(log.items()[1]),
              "1, /raise_and_guard_test.cpp, LINE, , EXCEPTION caught: toInt() - EXCEPTION\n");
}

TEST(UGuarded, StandardExceptionGivesMinusOneAndIsLoggedByItsDescription) {
    const RecordLog log;
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw std::runtime_error("what it says"); }), -1);
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(log.items()[0], "1, , 0, , what it says\n");
    EXPECT_EQ(withoutLine(log.items()[1]),
              "1, /raise_and_guard_test.cpp, LINE, , EXCEPTION caught: work() - EXCEPTION\n");
}

TEST(UGuarded, AnythingElseGivesMinusOneAndIsUnknown) {
    const RecordLog log;
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw 5; }), -1);
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(log.items()[0], "1, , 0, , Unknown exception\n");
}

TEST(UGuarded, RecordNeedsALevelOfOne) {
    const RecordLog log(-1);
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw UException("bad"); }), -1);
    ASSERT_EQ(log.items().size(), 1U);
    EXPECT_EQ(log.items()[0], "1, , 0, , bad\n");
}

TEST(UGuarded, WorksWithoutALog) {
    EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw UException(3, "bad"); }), 3);
}

}  // namespace
