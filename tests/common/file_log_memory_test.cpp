// Lack of memory at every allocation of the file log and of the settings: the stated results, no
// exception, no line torn, and a log that goes on.

#include <cerrno>
#include <cstring>
#include <functional>

#include "ErrorLogLevels.h"
#include "UException.h"
#include "ULogSettings.h"
#include "failing_memory.h"
#include "file_log_home.h"
#include "row_name.h"

namespace {

using testing::ElementsAreArray;

// Runs `operation(n)` for every n until it says that no allocation was left to fail.
void failingEach(const std::function<bool(int n)>& operation) {
    int n = 1;
    while (operation(n) && !testing::Test::HasFailure()) ++n;
}

long openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(FileLogTest, OpenWithoutMemoryIsEnomemAndLeavesItClosed) {
    const std::string name = path();
    const long descriptors = openDescriptors();
    int refused = 0;
    failingEach([&](int n) {
        UFileErrorLog fresh;
        int result = -1;
        bool failed = false;
        {
            const FailingAllocation failing(n);
            result = fresh.Open(name.c_str(), "a");
            failed = failing.happened();
        }
        if (result != 0) {
            ++refused;
            EXPECT_TRUE(failed);
            EXPECT_EQ(result, ENOMEM);
            EXPECT_EQ(openDescriptors(), descriptors);
            unsigned char data[] = {'a'};
            EXPECT_EQ(fresh.WriteErrorStr("text\n"), -1);
            EXPECT_EQ(fresh.WriteLogByte(data, 1), -1);
            EXPECT_EQ(fresh.WriteLogByte("text", data, 1), -1);
            EXPECT_EQ(fresh.Open(path().c_str(), "a"), 0);
        }
        EXPECT_EQ(fresh.WriteErrorStr("text\n"), 11);
        EXPECT_EQ(items().back(), "0,,,, text");
        return failed;
    });
    EXPECT_GT(refused, 0);
}

struct Writer {
    const char* rule;
    std::function<int(UFileErrorLog& log, const char* text)> write;
    int column;  // the length that the priority column adds; -1: the result does not say
};

class FileLogWriter : public FileLogTest, public testing::WithParamInterface<Writer> {
  protected:
    FileLogWriter() : m_before(errorLog) {
        open();
        errorLog = &log;
    }
    ~FileLogWriter() override { errorLog = m_before; }

  private:
    IUErrorLog* m_before;
};

TEST_P(FileLogWriter, WithoutMemoryWritesAllOrNothing) {
    for (const int length : {10, 500, 5000, 100000}) {
        const std::string text = std::string(static_cast<std::size_t>(length - 1), 'x') + "\n";
        failingEach([&](int n) {
            int result = 0;
            bool failed = false;
            const std::size_t before = items().size();
            {
                const FailingAllocation failing(n);
                EXPECT_NO_THROW(result = GetParam().write(log, text.c_str()));
                failed = failing.happened();
            }
            const std::size_t added = items().size() - before;
            if (GetParam().column >= 0) {
                EXPECT_EQ(result, added == 1 ? length + GetParam().column : -1);
            }
            EXPECT_TRUE(failed || added == 1);
            EXPECT_EQ(log.WriteErrorStr("after\n"), 12);
            EXPECT_EQ(items().back(), "0,,,, after");
            return failed;
        });
    }
}

INSTANTIATE_TEST_SUITE_P(
    Writers, FileLogWriter,
    testing::Values(Writer{"WriteErrorStr",
                           [](UFileErrorLog& l, const char* s) { return l.WriteErrorStr(s); }, 6},
                    Writer{"WriteLogStr",
                           [](UFileErrorLog& l, const char* s) { return l.WriteLogStr(5, s); }, 6},
                    Writer{"WriteLogItem",
                           [](UFileErrorLog& l, const char* s) { return l.WriteLogItem(s); }, 0},
                    Writer{"WriteLogByte",
                           [](UFileErrorLog& l, const char* s) {
                               auto* const data =
                                   reinterpret_cast<unsigned char*>(const_cast<char*>(s));
                               const auto length = static_cast<unsigned int>(std::strlen(s));
                               return l.WriteLogByte("", data, length - 1) + 1;
                           },
                           0},
                    Writer{"ErrorLogLevel0",
                           [](UFileErrorLog&, const char* s) {
                               ERRORLOGLEVEL0("%.5s\n", s);
                               return 0;
                           },
                           -1},
                    Writer{"Exception",
                           [](UFileErrorLog&, const char* s) {
                               const UException e(5, "/f.cpp", "f()", 7, "%.5s", s);
                               return 0;
                           },
                           -1}),
    nameOfRow);

TEST_F(FileLogTest, ModuleNameThatFindsNoMemoryIsNotTaken) {
    open();
    const std::string name(1000, 'm');
    {
        const FailingAllocation failing(1);
        EXPECT_NO_THROW(log.setParam("module_name", name.c_str()));
        EXPECT_TRUE(failing.happened());
    }
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, "nevo");
    log.setParam("module_name", name.c_str());
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, name);
}

// The file may stay until the next look, or stay closed until the next opening.
TEST_F(FileLogTest, RotationWithoutMemoryLosesNothing) {
    writeSettings("default_log_level=31\nlog_file_size=1000\n");
    failingEach([&](int n) {
        std::filesystem::remove(path());
        std::filesystem::remove(oldPath());
        UFileErrorLog fresh;
        EXPECT_EQ(fresh.Open(path().c_str(), "a"), 0);
        for (int i = 6; i < 49; ++i) fresh.WriteErrorStr("before\n");
        bool failed = false;
        {
            const FailingAllocation failing(n);
            EXPECT_EQ(fresh.WriteErrorStr("the fiftieth\n"), 19);
            failed = failing.happened();
        }
        const bool isRotated = std::filesystem::exists(oldPath());
        EXPECT_TRUE(failed || isRotated);
        const std::vector<std::string> old = itemsOf(isRotated ? oldPath() : path());
        EXPECT_EQ(old.size(), 50U);
        EXPECT_EQ(old.back(), "0,,,, the fiftieth");
        if (fresh.WriteErrorStr("after\n") == -1) {
            EXPECT_TRUE(isRotated);
            EXPECT_EQ(fresh.Open(path().c_str(), "a"), 0);
            EXPECT_EQ(fresh.WriteErrorStr("after\n"), 12);
        }
        EXPECT_EQ(items().back(), "0,,,, after");
        return failed;
    });
}

// Settings that cannot be read for want of memory are the defaults.

TEST_F(FileLogTest, SettingsWithoutMemoryAreTheDefaultsAndStayAsTheyAre) {
    const std::string before = "default_log_level=5\nnevo_log_level=6\nlog_file_size=7\n";
    writeSettings(before);
    const std::function<unsigned int()> getters[] = {
        [] { return ULogSettings::getLogLevel(); },
        [] { return ULogSettings::getModuleLogLevel("nevo"); },
        [] { return ULogSettings::getModuleLogLevel(nullptr); },
        [] { return ULogSettings::getFileRotationSize(); }};
    const unsigned int defaults[] = {63, 63, 63, 5242880};
    const unsigned int values[] = {5, 6, 5, 7};
    for (std::size_t i = 0; i < std::size(getters); ++i) {
        failingEach([&](int n) {
            const FailingAllocation failing(n);
            unsigned int result = 0;
            EXPECT_NO_THROW(result = getters[i]());
            EXPECT_EQ(result, failing.happened() ? defaults[i] : values[i]);
            return failing.happened();
        });
    }
    EXPECT_EQ(readSettings(), before);
}

TEST_F(FileLogTest, SettingALevelWithoutMemoryLeavesTheFileWholeOrChangesIt) {
    const std::string before = "default_log_level=31\nrest\n";
    failingEach([&](int n) {
        writeSettings(before);
        bool failed = false;
        {
            const FailingAllocation failing(n);
            EXPECT_NO_THROW(ULogSettings::setLogLevel(63, 0));
            failed = failing.happened();
        }
        const std::string after = readSettings();
        EXPECT_TRUE(after == "default_log_level=63\nrest\n" || (failed && after == before));
        return failed;
    });
}

}  // namespace
