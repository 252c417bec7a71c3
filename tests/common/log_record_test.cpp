#include "LogRecord.h"

#include <gtest/gtest.h>

#include "record_log.h"
#include "text_of.h"

namespace {

TEST(SourceUnit, IsTheFolderOfTheUnitOrTheFileThatStandsAlone) {
    const struct {
        const char* file;
        const char* unit;
    } rows[] = {
        {"common/src/UClasses/UList.cpp", "/UClasses"},
        {"/common/src/UClasses/UList.cpp", "/UClasses"},
        {"/a/b/common/src/m_strings/CString.cpp", "/m_strings"},
        {"common/src/FIFOBuffer.cpp", "/FIFOBuffer.cpp"},
        {"common/src/mac/m_sync.cpp", "/m_sync.cpp"},
        {"common/src/mac/m_sync/UEvent.cpp", "/m_sync"},
        {"common/inc/m_type_conversion.h", "/m_type_conversion.h"},
        {"common/inc/UIPAddress.h", "/UIPAddress.h"},
        {"elsewhere/x.cpp", "/x.cpp"},
        {"/", "/"},
        {"x.cpp", ""},
        {"", ""},
        {nullptr, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(textOf(sourceUnit(row.file)), row.unit);
}

TEST(SourceUnit, PlaceIsThatOfTheCall) {
    const SourcePlace place = SourcePlace::current();
    EXPECT_EQ(place.line, static_cast<unsigned int>(__LINE__ - 1));
    EXPECT_STREQ(place.file, __FILE__);
}

TEST(LogRecord, HasFiveFieldsAndALineEnd) {
    EXPECT_EQ(textOf(makeLogRecord(2, "/UClasses", 12, "UList::addObject", "50% of it")),
              "2, /UClasses, 12, UList::addObject, 50% of it\n");
    EXPECT_EQ(textOf(makeLogRecord(1, nullptr, 0, nullptr, nullptr)), "1, , 0, , \n");
    EXPECT_EQ(textOf(makeLogRecord(1, "%1", 1, "%2", "%3")), "1, %1, 1, %2, %3\n");
}

TEST(LogRecord, IsWrittenAtItsLevelAndAbove) {
    for (const int level : {1, 2, 3}) {
        const RecordLog log(level);
        writeLogRecord(2, {"common/src/FIFOBuffer.cpp", 7}, "f", "text");
        ASSERT_EQ(log.items().size(), level >= 2 ? 1U : 0U);
        if (level >= 2) {
            EXPECT_EQ(log.items()[0], "2, /FIFOBuffer.cpp, 7, f, text\n");
        }
    }
}

TEST(LogRecord, GoesNowhereWithoutALog) { writeLogRecord(1, {"x", 7}, "f", "text"); }

}  // namespace
