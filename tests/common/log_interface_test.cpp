// What every log object inherits: levels, priority columns and limits.

#include <gmock/gmock.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <type_traits>

#include "UFileErrorLog.h"
#include "UOutputErrorLog.h"
#include "item_log.h"
#include "row_name.h"
#include "table_slot.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LogInterface : public testing::Test {
  protected:
    // Sets a level and forgets the line that says so.
    void setLevel(int level) {
        log.SetLogLevel(level);
        log.clear();
    }

    ItemLog log;
};

// The two formatting writers as the compiler does not know them: a format may be missing.
int (IUErrorLog::*const kWriteFormat)(const char*, ...) = &IUErrorLog::WriteLog;
int (IUErrorLog::*const kWriteFormatAt)(int, const char*, ...) = &IUErrorLog::WriteLog;

TEST(LogTables, InterfaceHasItsOperationsInTheirSlots) {
    using Log = IUErrorLog;
    using Bytes = unsigned char*;
    const std::uintptr_t slots[] = {
        slotOf(&Log::Open),
        slotOf(&Log::Close),
        slotOf<int (Log::*)(const char*, ...)>(&Log::WriteLog),
        slotOf<int (Log::*)(int, const char*, ...)>(&Log::WriteLog),
        slotOf<int (Log::*)(const char*)>(&Log::WriteLogStr),
        slotOf<int (Log::*)(int, const char*)>(&Log::WriteLogStr),
        slotOf(&Log::WriteErrorStr),
        slotOf<int (Log::*)(Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf<int (Log::*)(const char*, Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf(&Log::WriteAsHex),
        slotOf(&Log::WriteLogItem),
        slotOf(&Log::GetLogName),
        slotOf(&Log::GetLogLevel),
        slotOf(&Log::SetLogLevel),
        slotOf(&Log::setParam)};
    EXPECT_THAT(slots, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
}

// The destructor takes the first two.
TEST(LogTables, FileLogHasItsOperationsInTheirSlots) {
    using Log = UFileErrorLog;
    using Bytes = unsigned char*;
    const std::uintptr_t slots[] = {
        slotOf(&UFileErrorLogBase::setParam),
        slotOf(&Log::Open),
        slotOf(&Log::Close),
        slotOf(&Log::WriteLogItem),
        slotOf<int (Log::*)(Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf<int (Log::*)(const char*, Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf(&Log::GetLogName)};
    EXPECT_THAT(slots, ElementsAre(2, 3, 4, 5, 6, 7, 8));
}

TEST(LogTables, OutputLogHasItsOperationsInTheirSlots) {
    using Log = UOutputErrorLog;
    using Bytes = unsigned char*;
    const std::uintptr_t slots[] = {
        slotOf(&Log::Open),
        slotOf(&Log::Close),
        slotOf(&Log::GetLogName),
        slotOf(&Log::WriteLogItem),
        slotOf<int (Log::*)(Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf<int (Log::*)(const char*, Bytes, unsigned)>(&Log::WriteLogByte)};
    EXPECT_THAT(slots, ElementsAre(2, 3, 4, 5, 6, 7));
}

// Where a base begins in an object.
template <typename Base, typename Log>
std::ptrdiff_t placeOf(const Log& log) {
    return reinterpret_cast<const char*>(static_cast<const Base*>(&log)) -
           reinterpret_cast<const char*>(&log);
}

TEST(LogTables, LogsAreObjectsFirstAndLogsSecond) {
    constexpr std::ptrdiff_t second = sizeof(UObject);
    const UFileErrorLog file;
    EXPECT_EQ(placeOf<UFileErrorLogBase>(file), 0);
    EXPECT_EQ(placeOf<UObject>(file), 0);
    EXPECT_EQ(placeOf<IUErrorLog>(file), second);
    EXPECT_TRUE(std::is_abstract_v<UFileErrorLogBase>);
    const UOutputErrorLog output;
    EXPECT_EQ(placeOf<UObject>(output), 0);
    EXPECT_EQ(placeOf<IUErrorLog>(output), second);
    EXPECT_EQ(sizeof output, sizeof(UObject) + sizeof(IUErrorLog));
}

TEST_F(LogInterface, LevelStartsAtOne) { EXPECT_EQ(log.GetLogLevel(), 1); }

struct Level {
    const char* rule;
    int set;
    int stored;
};

class LogInterfaceLevel : public LogInterface, public testing::WithParamInterface<Level> {};

TEST_P(LogInterfaceLevel, IsStored) {
    EXPECT_EQ(log.SetLogLevel(GetParam().set), 0);
    EXPECT_EQ(log.GetLogLevel(), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(Levels, LogInterfaceLevel,
                         testing::Values(Level{"ZeroAsOne", 0, 1}, Level{"One", 1, 1},
                                         Level{"Basic", 31, 31}, Level{"Extended", 63, 63},
                                         Level{"BeyondTheBands", 1000, 1000},
                                         Level{"Negative", -7, -7},
                                         Level{"Highest", INT_MAX, INT_MAX},
                                         Level{"Lowest", INT_MIN, INT_MIN}),
                         nameOfRow);

TEST_F(LogInterface, LevelChangeIsLoggedOnce) {
    log.SetLogLevel(5);
    log.SetLogLevel(5);
    EXPECT_THAT(log.items(), ElementsAre("0,,,, log level has been changed to 5\n"));
}

TEST_F(LogInterface, LevelOfZeroIsLoggedAsTheOneItBecomes) {
    setLevel(31);
    log.SetLogLevel(0);
    EXPECT_THAT(log.items(), ElementsAre("0,,,, log level has been changed to 1\n"));
    log.SetLogLevel(0);
    EXPECT_EQ(log.items().size(), 1U);
}

TEST_F(LogInterface, LevelOfZeroIsNoChangeFromTheStart) {
    log.SetLogLevel(0);
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST_F(LogInterface, SetParamDoesNothing) {
    log.setParam("module_name", "nevo");
    log.setParam(nullptr, nullptr);
    EXPECT_THAT(log.items(), IsEmpty());
}

// Each writer at levels on both sides of its filter.
struct Written {
    const char* rule;
    int level;
    int (*write)(IUErrorLog&);
    const char* item;  // null for nothing
};

class LogInterfaceWriter : public LogInterface, public testing::WithParamInterface<Written> {};

TEST_P(LogInterfaceWriter, PrintsItsPriorityAndFilters) {
    setLevel(GetParam().level);
    const int result = GetParam().write(log);
    if (GetParam().item == nullptr) {
        EXPECT_THAT(log.items(), IsEmpty());
        EXPECT_EQ(result, 0);
    } else {
        EXPECT_THAT(log.items(), ElementsAre(GetParam().item));
        EXPECT_EQ(result, log.itemResult);
    }
}

constexpr auto errorStr = [](IUErrorLog& log) { return log.WriteErrorStr("text\n"); };
constexpr auto plain = [](IUErrorLog& log) { return log.WriteLog("%s %d\n", "text", 7); };
constexpr auto str = [](IUErrorLog& log) { return log.WriteLogStr("text\n"); };
constexpr auto str40 = [](IUErrorLog& log) { return log.WriteLogStr(40, "text\n"); };
constexpr auto str0 = [](IUErrorLog& log) { return log.WriteLogStr(0, "text\n"); };
constexpr auto strMinus3 = [](IUErrorLog& log) { return log.WriteLogStr(-3, "text\n"); };
constexpr auto log40 = [](IUErrorLog& log) { return log.WriteLog(40, "%s %d\n", "text", 7); };
constexpr auto log0 = [](IUErrorLog& log) { return log.WriteLog(0, "%s %d\n", "text", 7); };
constexpr auto logMinus3 = [](IUErrorLog& log) { return log.WriteLog(-3, "%s %d\n", "text", 7); };
constexpr auto null = [](IUErrorLog& log) { return (log.*kWriteFormat)(nullptr); };
constexpr auto null5 = [](IUErrorLog& log) { return (log.*kWriteFormatAt)(5, nullptr); };
constexpr auto null0 = [](IUErrorLog& log) { return (log.*kWriteFormatAt)(0, nullptr); };

INSTANTIATE_TEST_SUITE_P(
    ErrorTexts, LogInterfaceWriter,
    testing::Values(Written{"ErrorTextAtLevelOne", 1, errorStr, "0,,,, text\n"},
                    Written{"ErrorTextBelowOne", -1, errorStr, "0,,,, text\n"},
                    Written{"ErrorTextAtTheLowestLevel", INT_MIN, errorStr, "0,,,, text\n"},
                    Written{"FormatAtLevelOne", 1, plain, "0,,,, text 7\n"},
                    Written{"FormatBelowOne", -1, plain, "0,,,, text 7\n"},
                    Written{"MissingFormat", 1, null,
                            "0,,,, IUErrorLog::WriteLog(LPCTSTR lpszMsg, ...) - template is "
                            "NULL\n"}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Texts, LogInterfaceWriter,
    testing::Values(Written{"TextAtLevelOne", 1, str, "0,,,, text\n"},
                    Written{"TextBelowOne", -1, str, nullptr},
                    Written{"PriorityOfATextIsNotCompared", 1, str40, "40,,,, text\n"},
                    Written{"TextWithPriorityBelowOne", -1, str40, nullptr},
                    Written{"TextWithPriorityZero", 1, str0, "0,,,, text\n"},
                    Written{"TextWithANegativePriority", 1, strMinus3, "-3,,,, text\n"},
                    Written{"NegativePriorityOfATextIsNotCompared", -5, strMinus3, nullptr}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Formats, LogInterfaceWriter,
    testing::Values(Written{"PriorityAtTheLevel", 40, log40, "40,,,, text 7\n"},
                    Written{"PriorityAboveTheLevel", 39, log40, nullptr},
                    Written{"PriorityZero", 1, log0, "0,,,, text 7\n"},
                    Written{"PriorityZeroAboveANegativeLevel", -1, log0, nullptr},
                    Written{"NegativePriority", 1, logMinus3, "-3,,,, text 7\n"},
                    Written{"NegativePriorityAtItsLevelStillNeedsLevelOne", -3, logMinus3, nullptr},
                    Written{"MissingFormatWithPriority", 5, null5,
                            "5,,,, IUErrorLog::WriteLog(int a_iPriority, LPCTSTR lpszMsg, ...) - "
                            "template is NULL\n"},
                    Written{"MissingFormatWithPriorityZero", 5, null0,
                            "0,,,, IUErrorLog::WriteLog(int a_iPriority, LPCTSTR lpszMsg, ...) - "
                            "template is NULL\n"},
                    Written{"MissingFormatAboveTheLevel", 4, null5, nullptr}),
    nameOfRow);

TEST_F(LogInterface, FormattedTextIsCutAt5119Characters) {
    const std::string longText(6000, 'x');
    setLevel(63);
    log.WriteLog("%s", longText.c_str());
    log.WriteLog(7, "%s", longText.c_str());
    EXPECT_THAT(log.items(),
                ElementsAre("0,,,, " + std::string(5119, 'x'), "7,,,, " + std::string(5119, 'x')));
}

TEST_F(LogInterface, FormattedTextOf5119CharactersIsWhole) {
    std::string text(5119, 'x');
    text.back() = '\n';
    log.WriteLog("%s", text.c_str());
    EXPECT_THAT(log.items(), ElementsAre("0,,,, " + text));
}

// In the "C" locale no wide character beyond ASCII has a form.
TEST_F(LogInterface, TextThatCannotBeFormattedIsEmpty) {
    const wchar_t noText[] = {static_cast<wchar_t>(0x10FFFF), L'\0'};
    log.WriteLog("text %ls\n", noText);
    log.WriteLog(1, "text %ls\n", noText);
    EXPECT_THAT(log.items(), ElementsAre("0,,,, ", "1,,,, "));
}

TEST_F(LogInterface, UnformattedTextIsNeverCut) {
    for (const std::size_t length : {0U, 999U, 1000U, 1001U, 5120U, 1U << 20}) {
        log.clear();
        const std::string text(length, 'x');
        log.WriteLogStr(text.c_str());
        log.WriteErrorStr(text.c_str());
        log.WriteLogStr(12345, text.c_str());
        EXPECT_THAT(log.items(),
                    ElementsAre("0,,,, " + text, "0,,,, " + text, "12345,,,, " + text));
    }
}

TEST_F(LogInterface, TextIsNoFormat) {
    log.WriteLogStr("100%n %s\n");
    EXPECT_THAT(log.items(), ElementsAre("0,,,, 100%n %s\n"));
}

TEST_F(LogInterface, NullTextCountsAsEmpty) {
    log.WriteLogStr(nullptr);
    log.WriteErrorStr(nullptr);
    log.WriteLogStr(3, nullptr);
    EXPECT_THAT(log.items(), ElementsAre("0,,,, ", "0,,,, ", "3,,,, "));
}

class HexLines : public LogInterface {
  protected:
    HexLines() {
        for (unsigned int i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i);
        setLevel(10);
    }

    // The lines of the first `count` bytes.
    std::vector<std::string> linesOf(unsigned int count) {
        log.clear();
        EXPECT_EQ(log.WriteAsHex(10, bytes.data(), count), 0);
        return log.items();
    }

    std::array<unsigned char, 256> bytes;
};

std::string hexLine(unsigned int first, unsigned int count) {
    std::string line = "10,,,, ";
    for (unsigned int i = first; i < first + count; ++i) {
        char cell[12];
        std::snprintf(cell, sizeof cell, " %2X", i);
        line += cell;
    }
    return line + "\n";
}

TEST_F(HexLines, ShowEachByteTwoWideInUpperCase) {
    unsigned char data[] = {0x0A, 0xFF, 0x00, 0x10};
    log.WriteAsHex(10, data, 4);
    EXPECT_THAT(log.items(), ElementsAre("10,,,,   A FF  0 10\n"));
}

TEST_F(HexLines, HoldUpTo32Values) {
    EXPECT_THAT(linesOf(0), IsEmpty());
    EXPECT_THAT(linesOf(1), ElementsAre(hexLine(0, 1)));
    EXPECT_THAT(linesOf(31), ElementsAre(hexLine(0, 31)));
    EXPECT_THAT(linesOf(32), ElementsAre(hexLine(0, 32)));
    EXPECT_THAT(linesOf(33), ElementsAre(hexLine(0, 32), hexLine(32, 1)));
    EXPECT_THAT(linesOf(64), ElementsAre(hexLine(0, 32), hexLine(32, 32)));
    EXPECT_EQ(linesOf(256).size(), 8U);
    EXPECT_EQ(linesOf(256).back(), hexLine(224, 32));
}

TEST_F(HexLines, AreWrittenAtTheirPriorityAndBelow) {
    EXPECT_EQ(log.WriteAsHex(11, bytes.data(), 40), 0);
    EXPECT_THAT(log.items(), IsEmpty());
    log.WriteAsHex(0, bytes.data(), 1);
    EXPECT_THAT(log.items(), ElementsAre("0,,,,   0\n"));
}

TEST_F(HexLines, OfNoDataAreNone) {
    EXPECT_EQ(log.WriteAsHex(1, nullptr, 40), 0);
    EXPECT_THAT(log.items(), IsEmpty());
}

}  // namespace
