// Opening and closing: headers, settings, the file itself and what can go wrong with it.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "file_log_home.h"
#include "row_name.h"
#include "sandbox_main.h"

namespace {

bool g_modesStay = false;

}  // namespace

// The linker sends every call of chmod here.
extern "C" {
int __real_chmod(const char* path, mode_t mode);
int __wrap_chmod(const char* path, mode_t mode) {
    return g_modesStay ? 0 : __real_chmod(path, mode);
}
}

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

class FileLogOpen : public FileLogTest {
  protected:
    // Writes fail and nothing is there to write to.
    void expectClosed() {
        unsigned char data[] = {'a'};
        EXPECT_EQ(log.WriteLogItem("text\n"), -1);
        EXPECT_EQ(log.WriteLogByte(data, 1), -1);
        EXPECT_EQ(log.WriteLogByte("text", data, 1), -1);
        EXPECT_EQ(log.WriteErrorStr("text\n"), -1);
    }
};

TEST_F(FileLogOpen, IsClosedBefore) {
    expectClosed();
    EXPECT_STREQ(log.GetLogName(), "");
    EXPECT_EQ(log.GetLogLevel(), 1);
}

TEST_F(FileLogOpen, NewFileBeginsWithFileHeaderAndStartUpHeader) {
    open();
    EXPECT_THAT(bytesOf(path()), StartsWith(fileHeader()));
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(63)));
}

TEST_F(FileLogOpen, EmptyFileGetsTheFileHeaderToo) {
    std::ofstream(path()).close();
    open();
    EXPECT_THAT(bytesOf(path()), StartsWith(fileHeader()));
}

TEST_F(FileLogOpen, FileWithContentGetsTheStartUpHeaderOnly) {
    std::ofstream(path()) << "before\n";
    open();
    const std::string text = bytesOf(path());
    EXPECT_THAT(text, StartsWith("before\n"));
    EXPECT_EQ(text.find(fileRule()), std::string::npos);
    std::ofstream(path()) << text.substr(7);
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(63)));
}

TEST_F(FileLogOpen, ReopeningAppendsAnotherStartUpHeader) {
    open();
    log.Close();
    open();
    const std::vector<std::string> once = startUpItems(63);
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_THAT(items(), ElementsAreArray(twice));
}

TEST_F(FileLogOpen, ModeOfTheCLibraryDecidesWhatBecomesOfTheContent) {
    std::ofstream(path()) << "before\n";
    ASSERT_EQ(log.Open(path().c_str(), "w"), 0);
    EXPECT_THAT(bytesOf(path()), StartsWith(fileHeader()));
}

TEST_F(FileLogOpen, OpenLogKeepsItsFile) {
    open();
    const std::string before = bytesOf(path());
    const std::string other = home() + "/other.log";
    EXPECT_EQ(log.Open(other.c_str(), "w"), 0);
    EXPECT_EQ(log.GetLogName(), path());
    EXPECT_FALSE(std::filesystem::exists(other));
    EXPECT_EQ(bytesOf(path()), before);
    log.WriteErrorStr("text\n");
    EXPECT_EQ(items().back(), "0,,,, text");
}

TEST_F(FileLogOpen, OpenLogKeepsItsSettings) {
    writeSettings("default_log_level=10\n");
    open();
    writeSettings("default_log_level=20\n");
    EXPECT_EQ(log.Open(path().c_str(), "a"), 0);
    EXPECT_EQ(log.GetLogLevel(), 10);
}

TEST_F(FileLogOpen, NamelessLogIsLogTxtInTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(home());
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(log.Open(name, "w"), 0);
        EXPECT_STREQ(log.GetLogName(), "log.txt");
        EXPECT_THAT(bytesOf(home() + "/log.txt"), StartsWith(fileHeader()));
        log.Close();
        std::filesystem::remove(home() + "/log.txt");
    }
    std::filesystem::current_path(before);
}

TEST_F(FileLogOpen, MakesTheLogsFolder) {
    open();
    EXPECT_EQ(modeOf(home() + "/Library/Logs/Zerva"), 0750U);
}

TEST_F(FileLogOpen, FailsNotWhenTheLogsFolderCannotBeMade) {
    std::filesystem::remove(home() + "/Library/Logs");
    open();
    EXPECT_FALSE(std::filesystem::exists(home() + "/Library/Logs"));
}

TEST_F(FileLogOpen, FileIsForTheUserAloneUnlessRootMakesIt) {
    open();
    EXPECT_EQ(modeOf(path()), sandboxUserIsRoot() ? 0644U : 0600U);
}

// Not even between its making and the setting of its permissions.
TEST_F(FileLogOpen, FileIsNeverForOthersWhateverTheMask) {
    const mode_t before = umask(0);
    g_modesStay = true;
    open();
    g_modesStay = false;
    umask(before);
    EXPECT_EQ(modeOf(path()), 0600U);
}

TEST_F(FileLogOpen, PermissionsBehindALinkAreThoseOfItsTarget) {
    std::ofstream(path() + ".target").close();
    std::filesystem::create_symlink(path() + ".target", path());
    open();
    EXPECT_EQ(modeOf(path() + ".target"), sandboxUserIsRoot() ? 0644U : 0600U);
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
}

TEST_F(FileLogOpen, PermissionsOfAnOldFileAreSetToo) {
    std::ofstream(path()) << "before\n";
    std::filesystem::permissions(path(), std::filesystem::perms{0666});
    open();
    EXPECT_EQ(modeOf(path()), sandboxUserIsRoot() ? 0644U : 0600U);
}

TEST_F(FileLogOpen, FileIsClosedWhenAProgramStarts) {
    open();
    int found = 0;
    for (int descriptor = 0; descriptor < 64; ++descriptor) {
        std::error_code error;
        const auto target =
            std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error);
        if (target != path()) continue;
        ++found;
        EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

struct Settings {
    const char* rule;
    const char* file;
    int level;
};

class FileLogSettings : public FileLogTest, public testing::WithParamInterface<Settings> {};

TEST_P(FileLogSettings, GiveTheLevel) {
    writeSettings(GetParam().file);
    open();
    EXPECT_EQ(log.GetLogLevel(), GetParam().level);
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(GetParam().level)));
}

INSTANTIATE_TEST_SUITE_P(
    Levels, FileLogSettings,
    testing::Values(Settings{"DefaultLine", "default_log_level=5\n", 5},
                    Settings{"ModuleLine", "default_log_level=5\nnevo_log_level=31\n", 31},
                    Settings{"LineOfAnotherModule", "nevo_plugin_log_level=9\n", 63},
                    Settings{"LevelLineIsMissingBelow48", "default_log_level=47\n", 47},
                    Settings{"LevelLineStandsAt48", "default_log_level=48\n", 48},
                    Settings{"ZeroIsOne", "default_log_level=0\n", 1}),
    nameOfRow);

TEST_F(FileLogOpen, NegativeLevelFromTheSettingsSilencesTexts) {
    writeSettings("default_log_level=-5\n");
    open();
    EXPECT_EQ(log.GetLogLevel(), -5);
    const std::vector<std::string> all = startUpItems(0);
    EXPECT_THAT(items(), ElementsAreArray({all[2], all[3]}));
}

TEST_F(FileLogOpen, EveryOpenReadsTheSettingsAgain) {
    writeSettings("default_log_level=10\n");
    open();
    log.Close();
    writeSettings("default_log_level=20\n");
    open();
    EXPECT_EQ(log.GetLogLevel(), 20);
}

TEST_F(FileLogOpen, LevelThatOpeningChangesIsNotLogged) {
    open();
    EXPECT_EQ(bytesOf(path()).find("has been changed"), std::string::npos);
    log.SetLogLevel(31);
    EXPECT_EQ(items().back(), "0,,,, log level has been changed to 31");
}

TEST_F(FileLogOpen, CloseEndsTheLog) {
    open();
    const std::string before = bytesOf(path());
    EXPECT_EQ(log.Close(), 0);
    expectClosed();
    EXPECT_EQ(log.Close(), 0);
    EXPECT_EQ(bytesOf(path()), before);
    EXPECT_EQ(log.GetLogName(), path());
}

TEST_F(FileLogOpen, DestructionClosesTheFile) {
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = descriptors();
    {
        UFileErrorLog other;
        ASSERT_EQ(other.Open(path().c_str(), "a"), 0);
        EXPECT_EQ(descriptors(), before + 1);
    }
    EXPECT_EQ(descriptors(), before);
}

TEST_F(FileLogOpen, MissingFolderIsReported) {
    const std::string name = home() + "/nowhere/nevo.log";
    EXPECT_EQ(log.Open(name.c_str(), "a"), ENOENT);
    expectClosed();
    EXPECT_EQ(log.GetLogName(), name);
    open();
}

TEST_F(FileLogOpen, FolderInItsPlaceIsReported) {
    std::filesystem::create_directory(path());
    EXPECT_EQ(log.Open(path().c_str(), "a"), EISDIR);
    expectClosed();
}

TEST_F(FileLogOpen, FolderThatMayNotBeWrittenIsReported) {
    if (sandboxUserIsRoot()) GTEST_SKIP() << "root may";
    std::filesystem::create_directory(home() + "/closed");
    std::filesystem::permissions(home() + "/closed", std::filesystem::perms{0500});
    EXPECT_EQ(log.Open((home() + "/closed/nevo.log").c_str(), "a"), EACCES);
    expectClosed();
}

TEST_F(FileLogOpen, LackOfDescriptorsIsReported) {
    const std::string name = path();
    open();  // everything that opening uses has been used once, the sanitizers' own needs included
    log.Close();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit few = before;
    few.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &few);
    const int error = log.Open(name.c_str(), "a");
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(error, EMFILE);
    expectClosed();
}

TEST_F(FileLogOpen, UnknownModesAreRefused) {
    for (const char* mode : {static_cast<const char*>(nullptr), "", "+", "q", "A"}) {
        EXPECT_EQ(log.Open(path().c_str(), mode), EINVAL);
        expectClosed();
    }
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(FileLogOpen, ModesOfTheCLibraryAreKnown) {
    for (const char* mode : {"a", "w", "a+", "w+", "ab", "r+", "r"}) {
        EXPECT_EQ(log.Open(path().c_str(), mode), 0) << mode;
        log.Close();
    }
    EXPECT_EQ(log.Open(path().c_str(), "wx"), EEXIST);
}

TEST_F(FileLogOpen, FileThatIsOnlyReadTakesNothingAndSaysNothing) {
    std::ofstream(path()) << "before\n";
    EXPECT_EQ(log.Open(path().c_str(), "r"), 0);
    EXPECT_EQ(log.WriteLogItem("text\n"), 5);
    EXPECT_EQ(bytesOf(path()), "before\n");
}

TEST_F(FileLogOpen, NamedPipeInItsPlaceHoldsNobodyUp) {
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_EQ(log.Open(path().c_str(), "a"), ENXIO);
    expectClosed();
    const int reader = ::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(log.Open(path().c_str(), "a"), ENXIO);
    expectClosed();
    close(reader);
}

TEST_F(FileLogOpen, DeviceInItsPlaceIsWrittenTo) {
    EXPECT_EQ(log.Open("/dev/null", "a"), 0);
    EXPECT_EQ(log.WriteLogItem("text\n"), 5);
}

}  // namespace
