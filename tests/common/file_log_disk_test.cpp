// A disk that is full, and a limit on the size of files.

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "capturing_log.h"
#include "file_log_home.h"
#include "process_log.h"
#include "sandbox_main.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// The log is on a small disk, in a file whose name other tests do not use.
class FileLogDisk : public FileLogTest {
  protected:
    FileLogDisk() {
        writeSettings("default_log_level=31\n");
        EXPECT_EQ(log.Open(name().c_str(), "w"), 0);
    }
    ~FileLogDisk() override {
        log.Close();
        freeDisk();
        std::filesystem::remove(name());
    }

    static std::string name() { return std::string(kSmallDisk) + "/nevo.log"; }
    static std::string filler() { return std::string(kSmallDisk) + "/filler"; }

    // Leaves room for nothing, or for about `pages` blocks of the disk.
    static void fillDisk(int pages = 0) {
        std::ofstream file(filler(), std::ios::binary);
        const std::string page(4096, 'x');
        while (file.write(page.data(), 4096).flush()) {
        }
        file.close();
        if (pages > 0) {
            std::filesystem::resize_file(filler(), std::filesystem::file_size(filler()) -
                                                       4096 * static_cast<std::size_t>(pages));
        }
    }
    static void freeDisk() { std::filesystem::remove(filler()); }
};

TEST_F(FileLogDisk, FullDiskIsNotReportedForItems) {
    fillDisk();
    const std::string text(10000, 'x');
    EXPECT_EQ(log.WriteLogItem(text.c_str()), 10000);
    EXPECT_EQ(log.WriteErrorStr("text\n"), 11);
}

TEST_F(FileLogDisk, WritingGoesOnWhenThereIsRoomAgain) {
    fillDisk();
    for (int i = 0; i < 30; ++i) log.WriteLogItem(std::string(10000, 'x').c_str());
    freeDisk();
    EXPECT_EQ(log.WriteErrorStr("there is room\n"), 20);
    EXPECT_THAT(bytesOf(name()), EndsWith(", 0,,,, there is room\n"));
}

TEST_F(FileLogDisk, TextWithBytesIsNotReportedEither) {
    fillDisk();
    std::vector<unsigned char> data(100000, 'x');
    EXPECT_EQ(log.WriteLogByte("text", data.data(), 100000), 100000);
}

// The failure's own record, as the process's log object receives it.
class FileLogBlock : public FileLogDisk {
  protected:
    static std::string recordOf(const std::string& function, const std::string& call, int error) {
        return ", " + function + ", EXCEPTION - " + call + " failed (error), " +
               std::to_string(error) + "\n)>";
    }

    CapturingLog record;

  private:
    AsProcessLog m_asProcessLog{record};
};

TEST_F(FileLogBlock, ThatDoesNotFitIsAFailureThatIsLogged) {
    fillDisk();
    std::vector<unsigned char> data(1 << 20, 'x');
    EXPECT_EQ(log.WriteLogByte(data.data(), 1 << 20), -1);
    ASSERT_EQ(record.events().size(), 1U);
    EXPECT_THAT(record.events()[0], StartsWith("<WriteLogItem(1, /UClasses, "));
    EXPECT_THAT(record.events()[0],
                EndsWith(recordOf("UFileErrorLog::WriteLogByte", "fwrite()", ENOSPC)));
}

TEST_F(FileLogBlock, WhoseEmptyLineDoesNotFitIsAFailureThatIsLogged) {
    // The block ends with the disk's last page.
    fillDisk(2);
    const std::size_t used = std::filesystem::file_size(name()) % 4096;
    const auto room = static_cast<unsigned int>(4096 - used + 2 * 4096);
    std::vector<unsigned char> data(room, 'x');
    EXPECT_EQ(log.WriteLogByte(data.data(), room), -1);
    ASSERT_EQ(record.events().size(), 1U);
    EXPECT_THAT(record.events()[0],
                EndsWith(recordOf("UFileErrorLog::WriteLogByte()", "_ftprintf()", ENOSPC)));
}

TEST_F(FileLogBlock, ThatFailsIsAWriteThatCounts) {
    writeSettings("default_log_level=31\nlog_file_size=0\n");
    log.Close();
    ASSERT_EQ(log.Open(name().c_str(), "w"), 0);
    fillDisk();
    std::vector<unsigned char> data(1 << 20, 'x');
    for (int i = 0; i < 37; ++i) log.WriteLogByte(data.data(), 1 << 20);
    EXPECT_FALSE(std::filesystem::exists(name() + ".bak"));
    log.WriteLogByte(data.data(), 1 << 20);
    EXPECT_TRUE(std::filesystem::exists(name() + ".bak"));
    std::filesystem::remove(name() + ".bak");
}

// The failure is written to the log that failed: nobody else is there to be told.
TEST_F(FileLogBlock, MayFailInTheLogThatRecordsTheFailure) {
    errorLog = &log;
    fillDisk();
    std::vector<unsigned char> data(1 << 20, 'x');
    EXPECT_EQ(log.WriteLogByte(data.data(), 1 << 20), -1);
    freeDisk();
    log.WriteErrorStr("still here\n");
    EXPECT_THAT(bytesOf(name()), HasSubstr("0,,,, still here\n"));
}

TEST_F(FileLogDisk, RotationOnAFullDiskLosesNoMoreThanItMust) {
    writeSettings("default_log_level=31\nlog_file_size=1000\n");
    log.Close();
    ASSERT_EQ(log.Open(name().c_str(), "w"), 0);
    fillDisk();
    write(200);
    freeDisk();
    write(1);
    EXPECT_THAT(bytesOf(name()), EndsWith("0,,,, item 0\n"));
    std::filesystem::remove(name() + ".bak");
}

class FileSizeLimit : public FileLogTest {
  protected:
    FileSizeLimit() {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit small = m_before;
        small.rlim_cur = 8192;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileSizeLimit() override { setrlimit(RLIMIT_FSIZE, &m_before); }

  private:
    rlimit m_before;
};

// The signal that usually follows would end this program.
TEST_F(FileSizeLimit, EndsNobodyAndTearsNoLine) {
    open();
    write(500);
    EXPECT_LE(bytesOf(path()).size(), 8192U);
    EXPECT_GT(bytesOf(path()).size(), 8192U - 100);
    EXPECT_THAT(items().back(), StartsWith("0,,,, item "));
}

TEST_F(FileSizeLimit, IsAFailureForBytes) {
    open();
    std::vector<unsigned char> data(8192, 'x');
    EXPECT_EQ(log.WriteLogByte(data.data(), 8192), -1);
}

TEST_F(FileSizeLimit, DoesNotConcernDevices) {
    ASSERT_EQ(log.Open("/dev/null", "a"), 0);
    std::vector<unsigned char> data(10000, 'x');
    EXPECT_EQ(log.WriteLogByte(data.data(), 10000), 10000);
}

}  // namespace
