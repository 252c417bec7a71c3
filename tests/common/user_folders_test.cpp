#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>

#include "UserFolders.h"
#include "sandbox_main.h"
#include "temporary_home.h"

namespace {

namespace fs = std::filesystem;

class UserFolders : public TemporaryHome {};

struct Owner {
    unsigned int uid;
    unsigned int gid;
    bool operator==(const Owner&) const = default;
};

Owner ownerOf(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return {status.st_uid, status.st_gid};
}

TEST_F(UserFolders, HomeIsTheEnvironmentsValue) {
    EXPECT_STREQ(getCurrentUserHomeFolder(), home().c_str());
    setenv("HOME", "not even a path", 1);
    EXPECT_STREQ(getCurrentUserHomeFolder(), "not even a path");
}

TEST_F(UserFolders, EmptyHomeIsAValue) {
    setenv("HOME", "", 1);
    EXPECT_STREQ(getCurrentUserHomeFolder(), "");
    EXPECT_STREQ(getZervaFolderPath(false), "/Library/Zerva");
}

TEST_F(UserFolders, UnsetHomeGivesThePasswordEntrysFolder) {
    unsetenv("HOME");
    EXPECT_STREQ(getCurrentUserHomeFolder(), sandboxUserIsRoot() ? "/root" : "/home/user");
}

// Runs a test of this program again as a user whom no password entry knows.
bool passesForUnknownUser(const std::string& test) {
    const std::string command = "unshare --user --map-user=4242 " +
                                fs::read_symlink("/proc/self/exe").string() +
                                " --gtest_filter=" + test + " >/dev/null";
    return std::system(command.c_str()) == 0;
}

TEST_F(UserFolders, WithoutHomeAndPasswordEntryThePathsBeginEmpty) {
    if (getuid() != 4242) {
        EXPECT_TRUE(
            passesForUnknownUser("UserFolders.WithoutHomeAndPasswordEntryThePathsBeginEmpty"));
        return;
    }
    unsetenv("HOME");
    EXPECT_STREQ(getCurrentUserHomeFolder(), "");
    EXPECT_STREQ(getZervaLogsFolderPath(false), "/Library/Logs/Zerva");
}

TEST_F(UserFolders, PathsAreTheHomeFolderAndAFixedPart) {
    EXPECT_EQ(std::string(getUserFolderPath("/x/y", false)), home() + "/x/y");
    EXPECT_EQ(std::string(getUserFolderPath("x", false)), home() + "x");
    EXPECT_EQ(std::string(getZervaFolderPath(false)), home() + "/Library/Zerva");
    EXPECT_EQ(std::string(getZervaLogsFolderPath(false)), home() + "/Library/Logs/Zerva");
}

TEST_F(UserFolders, NothingIsMadeUnasked) {
    makeLibrary();
    getZervaFolderPath(false);
    EXPECT_FALSE(fs::exists(settingsFolder()));
}

TEST_F(UserFolders, AMissingFolderIsMadeReadableForTheGroup) {
    makeLibrary();
    const mode_t mask = umask(0);
    getZervaFolderPath(true);
    umask(mask);
    EXPECT_TRUE(fs::is_directory(settingsFolder()));
    EXPECT_EQ(modeOf(settingsFolder()), 0750u);
}

TEST_F(UserFolders, TheModeHoldsWhateverTheMask) {
    makeLibrary();
    const mode_t mask = umask(0777);
    getZervaFolderPath(true);
    umask(mask);
    EXPECT_EQ(modeOf(settingsFolder()), 0750u);
}

TEST_F(UserFolders, AMissingParentIsNotMade) {
    EXPECT_EQ(std::string(getZervaLogsFolderPath(true)), home() + "/Library/Logs/Zerva");
    EXPECT_FALSE(fs::exists(home() + "/Library"));
}

TEST_F(UserFolders, WhatExistsIsLeftAsItIs) {
    makeLibrary();
    fs::create_directory(settingsFolder());
    fs::permissions(settingsFolder(), fs::perms{0711});
    getZervaFolderPath(true);
    EXPECT_EQ(modeOf(settingsFolder()), 0711u);
}

TEST_F(UserFolders, ExistenceIsToldByBitsOfTheFileType) {
    const std::string path = home() + "/it";
    EXPECT_FALSE(isFileExist(path.c_str()));
    std::ofstream file(path);
    EXPECT_TRUE(isFileExist(path.c_str()));
    EXPECT_TRUE(isFileExist(home().c_str()));
    EXPECT_TRUE(isFileExist("/dev/null"));
}

TEST_F(UserFolders, ASocketExists) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    (home() + "/s").copy(address.sun_path, sizeof address.sun_path - 1);
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_TRUE(isFileExist(address.sun_path));
    close(socketFile);
}

TEST_F(UserFolders, ANamedPipeDoesNotExist) {
    const std::string path = home() + "/pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(isFileExist(path.c_str()));
}

TEST_F(UserFolders, ExistenceFollowsLinks) {
    const std::string link = home() + "/link";
    fs::create_symlink(home() + "/target", link);
    EXPECT_FALSE(isFileExist(link.c_str()));
    std::ofstream file(home() + "/target");
    EXPECT_TRUE(isFileExist(link.c_str()));
}

TEST_F(UserFolders, NoPathIsNotThere) {
    EXPECT_FALSE(isFileExist(nullptr));
    EXPECT_FALSE(isFileExist(""));
}

TEST_F(UserFolders, FilesAreTheOwnersAloneUnlessRootMadeThem) {
    const std::string path = home() + "/file";
    std::ofstream file(path);
    fs::permissions(path, fs::perms{0666});
    setFilePermission(path.c_str());
    EXPECT_EQ(modeOf(path), sandboxUserIsRoot() ? 0644u : 0600u);
}

TEST_F(UserFolders, PermissionsOfNothingAreNotAnError) {
    setFilePermission((home() + "/missing").c_str());
    setOwnerAndGroup((home() + "/missing").c_str());
}

TEST_F(UserFolders, TheUserIsWhoOwnsTheHomeFolder) {
    setenv("HOME", "/proc/1", 1);  // owned by whoever the sandbox runs as
    unsigned int uid = 1;
    unsigned int gid = 1;
    getCurrentUserIDGroupID(&uid, &gid);
    EXPECT_EQ((Owner{uid, gid}), ownerOf("/proc/1"));
    setenv("HOME", "/usr", 1);  // owned by somebody whom the sandbox does not know
    getCurrentUserIDGroupID(&uid, &gid);
    EXPECT_EQ((Owner{uid, gid}), ownerOf("/usr"));
}

TEST_F(UserFolders, WithoutAHomeFolderTheUserIsWhoRunsTheProcess) {
    setenv("HOME", "/does/not/exist", 1);
    unsigned int uid = 1;
    unsigned int gid = 1;
    getCurrentUserIDGroupID(&uid, &gid);
    EXPECT_EQ((Owner{uid, gid}), (Owner{geteuid(), getegid()}));
}

TEST_F(UserFolders, EitherIdMayBeLeftOut) {
    unsigned int uid = 1;
    unsigned int gid = 1;
    getCurrentUserIDGroupID(&uid, nullptr);
    getCurrentUserIDGroupID(nullptr, &gid);
    EXPECT_EQ((Owner{uid, gid}), ownerOf(home()));
}

TEST_F(UserFolders, AFileIsGivenToTheOwnerOfTheHomeFolder) {
    const std::string path = home() + "/file";
    std::ofstream file(path);
    setOwnerAndGroup(path.c_str());
    EXPECT_EQ(ownerOf(path), ownerOf(home()));
}

}  // namespace
