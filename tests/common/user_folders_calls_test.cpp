// The calls that make a user's folder: which, in which order, and what a failure changes.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "UserFolders.h"
#include "failing_memory.h"
#include "temporary_home.h"

namespace {

std::vector<std::string>& calls() {
    static std::vector<std::string> all;
    return all;
}

template <class... Words>
void note(const char* call, const char* path, Words... words) {
    std::ostringstream text;
    text << call << ' ' << path << std::oct;
    ((text << ' ' << words), ...);
    calls().push_back(text.str());
}

}  // namespace

// The linker sends every call of NAME to __wrap_NAME, and __real_NAME to the C library.
extern "C" {

int __real_mkdir(const char* path, mode_t mode);
int __real_chown(const char* path, uid_t owner, gid_t group);
int __real_chmod(const char* path, mode_t mode);

int __wrap_mkdir(const char* path, mode_t mode) {
    note("mkdir", path, mode);
    return __real_mkdir(path, mode);
}

int __wrap_chown(const char* path, uid_t owner, gid_t group) {
    note("chown", path, owner, group);
    return __real_chown(path, owner, group);
}

int __wrap_chmod(const char* path, mode_t mode) {
    note("chmod", path, mode);
    return __real_chmod(path, mode);
}
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UserFolderCalls : public TemporaryHome {
  protected:
    UserFolderCalls() {
        makeLibrary();
        calls().clear();
    }

    // What gives `path` to the owner of `home`.
    static std::string chownTo(const std::string& home, const std::string& path) {
        struct stat status {};
        stat(home.c_str(), &status);
        std::ostringstream text;
        text << "chown " << path << ' ' << std::oct << status.st_uid << ' ' << status.st_gid;
        return text.str();
    }
};

TEST_F(UserFolderCalls, AFolderIsTheUsersBeforeItOpensToTheGroup) {
    getZervaFolderPath(true);
    const std::string folder = settingsFolder();
    EXPECT_THAT(calls(), ElementsAre("mkdir " + folder + " 700", chownTo(home(), folder),
                                     "chmod " + folder + " 750"));
}

TEST_F(UserFolderCalls, AFolderThatExistsNeedsNone) {
    std::filesystem::create_directory(settingsFolder());
    getZervaFolderPath(true);
    getZervaLogsFolderPath(false);
    EXPECT_THAT(calls(), IsEmpty());
}

// Nothing can be made in a home folder that is somebody else's.
TEST_F(UserFolderCalls, AFailureToMakeTheFolderIsNotLookedAt) {
    setenv("HOME", "/usr", 1);
    EXPECT_STREQ(getUserFolderPath("/it", true), "/usr/it");
    EXPECT_THAT(calls(),
                ElementsAre("mkdir /usr/it 700", chownTo("/usr", "/usr/it"), "chmod /usr/it 750"));
}

TEST_F(UserFolderCalls, ANamedPipeInTheFoldersPlaceCountsAsMissing) {
    ASSERT_EQ(mkfifo(settingsFolder().c_str(), 0600), 0);
    getZervaFolderPath(true);
    EXPECT_EQ(calls().size(), 3u);
    EXPECT_EQ(modeOf(settingsFolder()), 0750u);
    EXPECT_TRUE(std::filesystem::is_fifo(settingsFolder()));
}

TEST_F(UserFolderCalls, WithoutMemoryThePathsRaise) {
    for (const auto path : {getZervaFolderPath, getZervaLogsFolderPath}) {
        std::string raisedOr;
        failingEach(
            [&] {
                try {
                    path(false);
                    raisedOr = "path";
                } catch (const std::bad_alloc&) {
                    raisedOr = "raised";
                }
            },
            [&](bool failed) { EXPECT_EQ(raisedOr, failed ? "raised" : "path"); });
    }
}

TEST_F(UserFolderCalls, WithoutMemoryTheUserIsWhoRunsTheProcess) {
    setenv("HOME", "/usr", 1);  // owned by somebody whom the sandbox does not know
    unsigned int uid = 1;
    unsigned int gid = 1;
    {
        const FailingAllocation failing(1);
        getCurrentUserIDGroupID(&uid, &gid);
    }
    EXPECT_EQ(uid, geteuid());
    EXPECT_EQ(gid, getegid());
}

}  // namespace
