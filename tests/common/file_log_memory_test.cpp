// Lack of memory at every allocation of the file log: the stated results, no exception, no line
// torn, and a log that goes on.

#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>

#include "ErrorLogLevels.h"
#include "UException.h"
#include "failing_memory.h"
#include "file_log_home.h"
#include "process_log.h"
#include "row_name.h"

namespace {

long openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(FileLogTest, OpenWithoutMemoryIsEnomemAndLeavesItClosed) {
    const std::string name = path();
    const long descriptors = openDescriptors();
    std::optional<UFileErrorLog> fresh(std::in_place);
    int result = -1;
    int refused = 0;
    failingEach([&] { result = fresh->Open(name.c_str(), "a"); },
                [&](bool failed) {
                    if (result != 0) {
                        ++refused;
                        EXPECT_TRUE(failed);
                        EXPECT_EQ(result, ENOMEM);
                        EXPECT_EQ(openDescriptors(), descriptors);
                        unsigned char data[] = {'a'};
                        EXPECT_EQ(fresh->WriteErrorStr("text\n"), -1);
                        EXPECT_EQ(fresh->WriteLogByte(data, 1), -1);
                        EXPECT_EQ(fresh->WriteLogByte("text", data, 1), -1);
                        EXPECT_EQ(fresh->Open(name.c_str(), "a"), 0);
                    }
                    EXPECT_EQ(fresh->WriteErrorStr("text\n"), 11);
                    EXPECT_EQ(items().back(), "0,,,, text");
                    fresh.emplace();
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
    FileLogWriter() { open(); }

  private:
    AsProcessLog m_asProcessLog{log};
};

TEST_P(FileLogWriter, WithoutMemoryWritesAllOrNothing) {
    for (const int length : {10, 500, 5000, 100000}) {
        const std::string text = std::string(static_cast<std::size_t>(length - 1), 'x') + "\n";
        std::size_t before = items().size();
        int result = 0;
        failingEach([&] { EXPECT_NO_THROW(result = GetParam().write(log, text.c_str())); },
                    [&](bool failed) {
                        const std::size_t added = items().size() - before;
                        if (GetParam().column >= 0) {
                            EXPECT_EQ(result, added == 1 ? length + GetParam().column : -1);
                        }
                        EXPECT_TRUE(failed || added == 1);
                        EXPECT_EQ(log.WriteErrorStr("after\n"), 12);
                        EXPECT_EQ(items().back(), "0,,,, after");
                        before = items().size();
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
    std::optional<UFileErrorLog> fresh;
    const auto writeUpToTheLook = [&] {
        fresh.reset();
        std::filesystem::remove(path());
        std::filesystem::remove(oldPath());
        EXPECT_EQ(fresh.emplace().Open(path().c_str(), "a"), 0);
        for (int i = 6; i < 49; ++i) fresh->WriteErrorStr("before\n");
    };
    writeUpToTheLook();
    failingEach([&] { EXPECT_EQ(fresh->WriteErrorStr("the fiftieth\n"), 19); },
                [&](bool failed) {
                    const bool isRotated = std::filesystem::exists(oldPath());
                    EXPECT_TRUE(failed || isRotated);
                    const std::vector<std::string> old = itemsOf(isRotated ? oldPath() : path());
                    EXPECT_EQ(old.size(), 50U);
                    EXPECT_EQ(old.back(), "0,,,, the fiftieth");
                    if (fresh->WriteErrorStr("after\n") == -1) {
                        EXPECT_TRUE(isRotated);
                        EXPECT_EQ(fresh->Open(path().c_str(), "a"), 0);
                        EXPECT_EQ(fresh->WriteErrorStr("after\n"), 12);
                    }
                    EXPECT_EQ(items().back(), "0,,,, after");
                    writeUpToTheLook();
                });
}

}  // namespace
