// Rotation: when it is looked at, when it happens, and what it leaves behind.

#include <sys/resource.h>
#include <unistd.h>

#include "file_log_home.h"
#include "row_name.h"
#include "sandbox_main.h"

namespace {

using testing::ElementsAreArray;
using testing::StartsWith;

// At level 31 six items begin a run, so 44 writes follow until the first look.
constexpr int kStartUpItems = 6;
constexpr int kWritesToFirstLook = 50 - kStartUpItems;

class FileLogRotation : public FileLogTest {
  protected:
    void openWithLimit(const std::string& size) {
        writeSettings("default_log_level=31\nlog_file_size=" + size + "\n");
        open();
    }

    bool isRotated() const { return std::filesystem::exists(oldPath()); }

    // Makes two writes, the second of which lets the file grow to exactly `size`.
    void growTo(std::size_t size) {
        const std::size_t before = bytesOf(path()).size();
        write(1);
        const std::size_t line = bytesOf(path()).size() - before;
        std::ofstream(path(), std::ios::app)
            << std::string(size - before - 2 * line - 1, 'x') << '\n';
        write(1);
        EXPECT_EQ(bytesOf(isRotated() ? oldPath() : path()).size(), size);
    }
};

TEST_F(FileLogRotation, HappensAtThe50thWrite) {
    openWithLimit("1000");
    write(kWritesToFirstLook - 1);
    EXPECT_GT(std::filesystem::file_size(path()), 1000U);
    EXPECT_FALSE(isRotated());
    write(1);
    EXPECT_TRUE(isRotated());
}

TEST_F(FileLogRotation, LeavesThe50thItemInTheOldFileAndBeginsANewOne) {
    openWithLimit("1000");
    write(kWritesToFirstLook - 1);
    log.WriteErrorStr("the fiftieth\n");
    EXPECT_THAT(bytesOf(oldPath()), StartsWith(fileHeader()));
    EXPECT_EQ(itemsOf(oldPath()).size(), 50U);
    EXPECT_EQ(itemsOf(oldPath()).back(), "0,,,, the fiftieth");
    EXPECT_THAT(bytesOf(path()), StartsWith(fileHeader()));
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
    EXPECT_EQ(modeOf(path()), sandboxUserIsRoot() ? 0644U : 0600U);
}

TEST_F(FileLogRotation, CountsTheItemsThatBeginTheNewFile) {
    openWithLimit("1000");
    write(kWritesToFirstLook);
    write(50 - kStartUpItems - 1);
    EXPECT_THAT(items().size(), 49U);
    write(1);
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
    EXPECT_EQ(itemsOf(oldPath()).size(), 50U);
}

TEST_F(FileLogRotation, KeepsOneOldFile) {
    std::ofstream(oldPath()) << "older";
    openWithLimit("1000");
    write(kWritesToFirstLook);
    EXPECT_THAT(bytesOf(oldPath()), StartsWith(fileHeader()));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(home()), {}), 3)
        << "Library, the log and its old file";
}

TEST_F(FileLogRotation, CountsBytesToo) {
    openWithLimit("1000");
    unsigned char data[] = {'a'};
    for (int i = 0; i < (kWritesToFirstLook - 2) / 2; ++i) {
        log.WriteLogByte(data, 1);
        log.WriteLogByte("text", data, 1);
    }
    write(1);
    EXPECT_FALSE(isRotated());
    log.WriteLogByte(data, 1);
    EXPECT_TRUE(isRotated());
}

TEST_F(FileLogRotation, CountsNoWriteThatWasNotMade) {
    openWithLimit("1000");
    write(kWritesToFirstLook - 1);
    log.WriteLog(32, "%s", "filtered");
    log.Close();
    log.WriteErrorStr("closed\n");
    EXPECT_FALSE(isRotated());
}

TEST_F(FileLogRotation, CountGoesOnWhenTheLogIsReopened) {
    openWithLimit("1000");
    write(20);
    log.Close();
    open();
    write(50 - 20 - 2 * kStartUpItems - 1);
    EXPECT_FALSE(isRotated());
    write(1);
    EXPECT_TRUE(isRotated());
}

TEST_F(FileLogRotation, FileOfExactlyTheLimitStays) {
    openWithLimit("10000");
    write(kWritesToFirstLook - 2);
    growTo(10000);
    EXPECT_FALSE(isRotated());
}

TEST_F(FileLogRotation, FileOfOneByteMoreIsRotated) {
    openWithLimit("10000");
    write(kWritesToFirstLook - 2);
    growTo(10001);
    EXPECT_TRUE(isRotated());
}

TEST_F(FileLogRotation, LargeFileWaitsForTheNextLook) {
    openWithLimit("10000");
    write(kWritesToFirstLook);
    std::ofstream(path(), std::ios::app) << std::string(10000, 'x') << '\n';
    write(49);
    EXPECT_FALSE(isRotated());
    write(1);
    EXPECT_TRUE(isRotated());
}

struct Limit {
    const char* rule;
    const char* line;
    bool rotates;
};

class FileLogLimit : public FileLogRotation, public testing::WithParamInterface<Limit> {};

TEST_P(FileLogLimit, ComesFromTheSettings) {
    writeSettings("default_log_level=31\n" + std::string(GetParam().line));
    open();
    std::ofstream(path(), std::ios::app) << std::string(100000, 'x') << '\n';
    write(kWritesToFirstLook);
    EXPECT_EQ(isRotated(), GetParam().rotates);
}

INSTANTIATE_TEST_SUITE_P(Limits, FileLogLimit,
                         testing::Values(Limit{"SizeBelow", "log_file_size=99999\n", true},
                                         Limit{"SizeAbove", "log_file_size=200000\n", false},
                                         Limit{"Zero", "log_file_size=0\n", true},
                                         Limit{"MinusOneIsTheLargest", "log_file_size=-1\n", false},
                                         Limit{"NoSeparator", "log_file_size1000\n", true},
                                         Limit{"NoNumber", "log_file_size=many\n", false},
                                         Limit{"None", "", false}),
                         nameOfRow);

TEST_F(FileLogRotation, DefaultLimitIsFiveMebibytes) {
    writeSettings("default_log_level=31\n");
    open();
    write(kWritesToFirstLook - 2);
    growTo(5242881);
    EXPECT_TRUE(isRotated());
}

TEST_F(FileLogRotation, LimitBelowTheHeaderRotatesEvery50Writes) {
    openWithLimit("0");
    for (int i = 0; i < 20; ++i) {
        write(kWritesToFirstLook);
        EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
        EXPECT_EQ(itemsOf(oldPath()).size(), 50U);
    }
}

// The six items that begin a file may be the ones that are counted to fifty.
TEST_F(FileLogRotation, MayHappenWhileARunBegins) {
    openWithLimit("0");
    write(40);
    log.Close();
    open();
    EXPECT_EQ(itemsOf(oldPath()).size(), 50U);
    const std::vector<std::string> begin = startUpItems(31);
    std::vector<std::string> expected = begin;
    expected.insert(expected.end(), begin.end() - 2, begin.end());
    EXPECT_THAT(items(), ElementsAreArray(expected));
}

TEST_F(FileLogRotation, ReadsTheSettingsAgain) {
    openWithLimit("1000");
    writeSettings("default_log_level=50\nlog_file_size=100000000\n");
    write(kWritesToFirstLook);
    EXPECT_EQ(log.GetLogLevel(), 50);
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(50)));
    std::filesystem::remove(oldPath());
    write(200);
    EXPECT_FALSE(isRotated());
}

TEST_F(FileLogRotation, DeletesTheFileWhenItCannotBeRenamed) {
    std::filesystem::create_directories(oldPath() + "/full");
    openWithLimit("1000");
    write(kWritesToFirstLook);
    EXPECT_TRUE(std::filesystem::is_directory(oldPath()));
    EXPECT_THAT(bytesOf(path()), StartsWith(fileHeader()));
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
    write(1);
    EXPECT_EQ(items().back(), "0,,,, item 0");
}

TEST_F(FileLogRotation, TruncatesTheFileWhenItCannotBeDeletedEither) {
    if (sandboxUserIsRoot()) GTEST_SKIP() << "root may always";
    const std::string folder = home() + "/closed";
    std::filesystem::create_directory(folder);
    writeSettings("default_log_level=31\nlog_file_size=1000\n");
    ASSERT_EQ(log.Open((folder + "/nevo.log").c_str(), "a"), 0);
    std::filesystem::permissions(folder, std::filesystem::perms{0500});
    write(kWritesToFirstLook);
    EXPECT_THAT(itemsOf(folder + "/nevo.log"), ElementsAreArray(startUpItems(31)));
    EXPECT_FALSE(std::filesystem::exists(folder + "/nevo.log.bak"));
    std::filesystem::permissions(folder, std::filesystem::perms{0700});
}

TEST_F(FileLogRotation, LeavesTheLogClosedWhenTheNewFileCannotBeOpened) {
    openWithLimit("1000");
    write(kWritesToFirstLook - 1);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_EQ(log.WriteErrorStr("the fiftieth\n"), 19);
    EXPECT_EQ(log.WriteErrorStr("lost\n"), -1);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(log.WriteErrorStr("lost\n"), -1);
    EXPECT_EQ(itemsOf(oldPath()).back(), "0,,,, the fiftieth");
    EXPECT_FALSE(std::filesystem::exists(path()));
    open();
    EXPECT_EQ(log.WriteErrorStr("written\n"), 14);
    EXPECT_EQ(items().back(), "0,,,, written");
}

TEST_F(FileLogRotation, DoesNotHappenToAFileThatIsGone) {
    openWithLimit("1000");
    std::filesystem::remove(path());
    write(200);
    EXPECT_FALSE(isRotated());
    EXPECT_FALSE(std::filesystem::exists(path()));
    log.Close();
    open();
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
}

// The size is that of whatever bears the name, and so is what is renamed.
TEST_F(FileLogRotation, GoesByTheFileThatBearsTheName) {
    openWithLimit("5000");
    std::filesystem::rename(path(), home() + "/moved.log");
    std::ofstream(path()) << "small\n";
    write(kWritesToFirstLook);
    EXPECT_FALSE(isRotated());
    std::ofstream(path()) << std::string(5001, 'x');
    write(50);
    EXPECT_EQ(bytesOf(oldPath()), std::string(5001, 'x'));
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
    EXPECT_EQ(itemsOf(home() + "/moved.log").size(), 100U);
}

}  // namespace
