#include "UserFolders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <vector>

namespace {

// The home folder of the real user's entry in the password database.
CString passwordHomeFolder() {
    std::vector<char> texts(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == ERANGE) {
        texts.resize(texts.size() * 2);
    }
    return found != nullptr ? found->pw_dir : "";
}

// Whether the home folder is there; without memory for its path it is not.
bool askForHomeFolder(struct stat& home) try {
    return stat(getCurrentUserHomeFolder(), &home) == 0;
} catch (const std::exception&) {
    return false;
}

}  // namespace

CString getCurrentUserHomeFolder() {
    const char* home = getenv("HOME");
    return home != nullptr ? CString(home) : passwordHomeFolder();
}

CString getUserFolderPath(const char* subPath, bool create) {
    CString path = getCurrentUserHomeFolder() + subPath;
    if (create && !isFileExist(path)) {
        mkdir(path, 0700);
        setOwnerAndGroup(path);
        // Last, so that the folder opens to the group only once the group is the user's.
        chmod(path, 0750);
    }
    return path;
}

CString getZervaFolderPath(bool create) { return getUserFolderPath("/Library/Zerva", create); }

CString getZervaLogsFolderPath(bool create) {
    return getUserFolderPath("/Library/Logs/Zerva", create);
}

bool isFileExist(const char* path) {
    struct stat status {};
    if (path == nullptr || stat(path, &status) != 0) return false;
    // Tested as bits, not compared as types: files, folders, devices and sockets all have one.
    return (status.st_mode & S_IFMT & (S_IFREG | S_IFLNK | S_IFDIR)) != 0;
}

void setFilePermission(const CString& path) { chmod(path, geteuid() != 0 ? 0600 : 0644); }

void setOwnerAndGroup(const CString& path) {
    unsigned int uid = 0;
    unsigned int gid = 0;
    getCurrentUserIDGroupID(&uid, &gid);
    // A process that may not give files away leaves them as they are.
    [[maybe_unused]] const int refused = chown(path, uid, gid);
}

void getCurrentUserIDGroupID(unsigned int* uid, unsigned int* gid) {
    struct stat home {};
    const bool known = askForHomeFolder(home);
    if (uid != nullptr) *uid = known ? home.st_uid : geteuid();
    if (gid != nullptr) *gid = known ? home.st_gid : getegid();
}
