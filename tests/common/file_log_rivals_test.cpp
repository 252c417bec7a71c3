// What others do to the file behind the log's back, and what an end in mid-rotation leaves.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "file_log_home.h"
#include "row_name.h"

namespace {

bool g_diesAfterRename = false;

}  // namespace

// The linker sends every call of rename here.
extern "C" {
int __real_rename(const char* from, const char* to);
int __wrap_rename(const char* from, const char* to) {
    const int result = __real_rename(from, to);
    if (g_diesAfterRename) raise(SIGKILL);
    return result;
}
}

namespace {

namespace fs = std::filesystem;

using testing::ElementsAreArray;

class FileLogRivals : public FileLogTest {
  protected:
    FileLogRivals() {
        writeSettings("default_log_level=31\nlog_file_size=1000\n");
        open();
    }

    // The writes that are missing to the next look at the size.
    static constexpr int kWritesToFirstLook = 50 - 6;
};

TEST_F(FileLogRivals, EndBetweenRenamingAndReopeningLosesNothing) {
    const pid_t child = fork();
    if (child == 0) {
        g_diesAfterRename = true;
        write(kWritesToFirstLook);
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(fs::exists(path()));
    EXPECT_EQ(itemsOf(oldPath()).size(), 50U);
    EXPECT_EQ(itemsOf(oldPath()).back(), "0,,,, item 43");
    UFileErrorLog next;
    ASSERT_EQ(next.Open(path().c_str(), "a"), 0);
    EXPECT_THAT(items(), ElementsAreArray(startUpItems(31)));
}

// Nobody locks anybody out: lines are dropped with a file that one of them replaces, never torn.
TEST_F(FileLogRivals, ProcessesThatRotateOneFileTearNoLine) {
    writeSettings("default_log_level=31\nlog_file_size=5000\n");
    log.Close();
    constexpr int kProcesses = 4;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        UFileErrorLog mine;
        mine.setParam("module_name", "child");
        if (mine.Open(path().c_str(), "a") != 0) _exit(1);
        for (int i = 0; i < 2000; ++i) mine.WriteLog("process %d item %d %s\n", process, i, "x x");
        _exit(0);
    }
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (const std::string& file : {path(), oldPath()}) {
        std::string text = bytesOf(file);
        // Two that begin a file at once may both find it empty.
        for (std::size_t at = 0; (at = text.find(fileHeader())) != std::string::npos;) {
            text.erase(at, fileHeader().size());
        }
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(text.back(), '\n');
        for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            const std::string line = text.substr(at, text.find('\n', at) - at);
            EXPECT_TRUE(parseLogLine(line).has_value()) << line;
        }
    }
}

// What stands in the file's place when the log looks at its size.
struct Rival {
    const char* rule;
    std::function<void(const std::string& path)> put;
    bool isNewFileMade;
    bool isOpenAfterwards;
};

class FileLogRival : public FileLogRivals, public testing::WithParamInterface<Rival> {};

TEST_P(FileLogRival, IsTakenForTheFile) {
    fs::remove(path());
    GetParam().put(path());
    write(kWritesToFirstLook - 1);
    log.WriteErrorStr("the last before the look\n");
    EXPECT_EQ(log.WriteErrorStr("after the look\n"), GetParam().isOpenAfterwards ? 21 : -1);
    EXPECT_EQ(fs::is_regular_file(fs::symlink_status(path())), GetParam().isNewFileMade);
    if (GetParam().isNewFileMade) {
        EXPECT_EQ(items().back(), "0,,,, after the look");
    }
    fs::remove_all(path());
    fs::remove_all(oldPath());
    log.Close();
    open();
    EXPECT_EQ(log.WriteErrorStr("text\n"), 11);
}

void makeFullFolder(const std::string& path) {
    fs::create_directory(path);
    // Large enough for the log to think of rotation, whatever the file system counts for a folder.
    for (int i = 0; i < 200; ++i)
        std::ofstream(path + "/" + std::string(100, 'x') + std::to_string(i));
}

INSTANTIATE_TEST_SUITE_P(
    Rivals, FileLogRival,
    testing::Values(
        Rival{"Nothing", [](const std::string&) {}, false, true},
        Rival{"LargeFile", [](const std::string& p) { std::ofstream(p) << std::string(2000, 'x'); },
              true, true},
        Rival{"LinkToALargeFile",
              [](const std::string& p) {
                  std::ofstream(p + ".target") << std::string(2000, 'x');
                  fs::create_symlink(p + ".target", p);
              },
              true, true},
        Rival{"LinkToNowhere",
              [](const std::string& p) { fs::create_symlink("/does/not/exist", p); }, false, true},
        Rival{"NamedPipe", [](const std::string& p) { mkfifo(p.c_str(), 0600); }, false, true},
        Rival{"FolderThatIsRenamed", makeFullFolder, true, true},
        Rival{"FolderThatCanBeNeitherRenamedNorDeleted",
              [](const std::string& p) {
                  makeFullFolder(p);
                  std::ofstream(p + ".bak") << "in the way";
              },
              false, false}),
    nameOfRow);

}  // namespace
