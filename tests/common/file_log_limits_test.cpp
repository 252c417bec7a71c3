// Texts longer than every limit, and what becomes of them in the file.

#include <algorithm>
#include <cerrno>
#include <functional>

#include "ErrorLogLevels.h"
#include "UGuarded.h"
#include "URaise.h"
#include "file_log_home.h"
#include "process_log.h"
#include "row_name.h"

namespace {

// The log is the process's, too, so that exceptions and shortcuts end in its file.
class FileLogLimits : public FileLogTest {
  protected:
    FileLogLimits() { open(); }

    // The items that `write` adds.
    std::vector<std::string> added(const std::function<void()>& write) {
        const std::size_t before = items().size();
        write();
        const std::vector<std::string> all = items();
        return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
    }

  private:
    AsProcessLog m_asProcessLog{log};
};

std::string text(std::size_t length) { return std::string(length, 'x'); }

struct Writer {
    const char* rule;
    std::function<void(UFileErrorLog& log, const char* text)> write;
    const char* before;
    std::size_t limit;  // 0: none
};

class FileLogWriter : public FileLogLimits, public testing::WithParamInterface<Writer> {};

TEST_P(FileLogWriter, CutsAtItsLimitOnly) {
    const Writer& writer = GetParam();
    for (const std::size_t length : {2046U, 2047U, 2048U, 5118U, 5119U, 5120U, 100000U, 3000000U}) {
        const std::size_t shown =
            writer.limit != 0 ? std::min<std::size_t>(length, writer.limit) : length;
        const std::vector<std::string> items = added([&] {
            writer.write(log, text(length).c_str());
            std::ofstream(path(), std::ios::app) << '\n';
        });
        ASSERT_EQ(items.size(), 1U) << length;
        EXPECT_TRUE(items[0] == writer.before + text(shown)) << length;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Writers, FileLogWriter,
    testing::Values(
        Writer{"WriteLog", [](UFileErrorLog& l, const char* s) { l.WriteLog("%s", s); }, "0,,,, ",
               5119},
        Writer{"WriteLogOfAPriority",
               [](UFileErrorLog& l, const char* s) { l.WriteLog(5, "%s", s); }, "5,,,, ", 5119},
        Writer{"WriteLogStr", [](UFileErrorLog& l, const char* s) { l.WriteLogStr(s); }, "0,,,, ",
               0},
        Writer{"WriteLogStrOfAPriority",
               [](UFileErrorLog& l, const char* s) { l.WriteLogStr(-7, s); }, "-7,,,, ", 0},
        Writer{"WriteErrorStr", [](UFileErrorLog& l, const char* s) { l.WriteErrorStr(s); },
               "0,,,, ", 0},
        Writer{"WriteLogItem", [](UFileErrorLog& l, const char* s) { l.WriteLogItem(s); }, "", 0},
        Writer{"ErrorLogLevel0", [](UFileErrorLog&, const char* s) { ERRORLOGLEVEL0("%s", s); },
               "1,,,, ", 2047},
        Writer{"ErrorLogLevel1", [](UFileErrorLog&, const char* s) { ERRORLOGLEVEL1("%s", s); },
               "2,,,, ", 2047},
        Writer{"ErrorLogLevel2", [](UFileErrorLog&, const char* s) { ERRORLOGLEVEL2("%s", s); },
               "48,,,, ", 2047}),
    nameOfRow);

TEST_F(FileLogLimits, ExceptionsAreCutAndKeepTheirLineEnd) {
    const std::vector<std::string> items = added([] {
        const UException plain("%s", text(10000).c_str());
        const UException placed(5, text(1000).c_str(), text(1001).c_str(), 7, "%s",
                                text(10000).c_str());
    });
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0], "1, , 0, , " + text(5119));
    EXPECT_EQ(items[1], "1, " + text(1000) + ", 7, , (0x5) " + text(5119));
}

TEST_F(FileLogLimits, GuardedFailuresStandInTwoLines) {
    const std::vector<std::string> items = added([] {
        UGuarded("work() - EXCEPTION", [] { URaise("work", "failed", text(10000).c_str()); });
    });
    ASSERT_EQ(items.size(), 2U);
    const std::string message = "EXCEPTION - failed, ";
    EXPECT_NE(items[0].find(", work, " + message + text(5119 - message.size())), std::string::npos);
    EXPECT_EQ(items[0].find(text(5119 - message.size() + 1)), std::string::npos);
    EXPECT_NE(items[1].find(", , EXCEPTION caught: work() - EXCEPTION"), std::string::npos);
}

TEST_F(FileLogLimits, ModuleNamesHaveNone) {
    log.setParam("module_name", text(1 << 20).c_str());
    log.WriteErrorStr("text\n");
    EXPECT_TRUE(lines().back().module == text(1 << 20));
}

TEST_F(FileLogLimits, PathThatIsTooLongIsReported) {
    log.Close();
    EXPECT_EQ(log.Open(("/tmp/" + text(300)).c_str(), "a"), ENAMETOOLONG);
    EXPECT_EQ(log.Open(("/tmp/" + text(100000)).c_str(), "a"), ENAMETOOLONG);
    EXPECT_EQ(log.WriteErrorStr("text\n"), -1);
}

// The longest name that a file may have leaves no room for the ".bak" behind it.
TEST_F(FileLogLimits, FileWhoseOldNameWouldBeTooLongIsDeletedInstead) {
    log.Close();
    writeSettings("default_log_level=31\nlog_file_size=1000\n");
    const std::string name = home() + "/" + text(255);
    ASSERT_EQ(log.Open(name.c_str(), "a"), 0);
    write(50);
    EXPECT_LT(itemsOf(name).size(), 50U);
    EXPECT_EQ(itemsOf(name).back(), "0,,,, item 49");
}

}  // namespace
