#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "open_flags.h"
#include "symbol_table.h"
#include "variadic.h"

namespace {

// <fcntl.h> of a Mac: what stands for the working folder, and flags of calls that name one.
constexpr int kMacHere = -2;
constexpr int kMacNotThroughLink = 0x20;
constexpr int kMacRemoveFolder = 0x80;

int hostFolder(int folder) { return folder == kMacHere ? AT_FDCWD : folder; }

}  // namespace

using macho::libsystem::hostOpenFlags;
using macho::libsystem::kMacCreate;

MAC_CALL int macOpenat(int folder, const char* path, int flags, MacArguments arguments) {
    const int mode = (flags & kMacCreate) != 0 ? MAC_NEXT(arguments, int) : 0;
    return openat(hostFolder(folder), path, hostOpenFlags(flags), mode);
}
MAC_VARIADIC_3(int, Openat, int, const char*, int);

namespace macho::libsystem {

namespace {

// <sys/dirent.h> of a Mac, in the form with long file numbers. The types are the same.
struct MacEntry {
    std::uint64_t number;
    std::uint64_t position;
    std::uint16_t length;
    std::uint16_t nameLength;
    std::uint8_t type;
    char name[1024];
};
static_assert(sizeof(MacEntry) == 1048);

// The record stays as it is until the calling thread asks for another.
MacEntry* nextEntry(DIR* folder) {
    const dirent* from = readdir(folder);
    if (from == nullptr) return nullptr;
    thread_local MacEntry entry;
    entry = {};
    entry.number = from->d_ino;
    entry.length = sizeof entry;
    entry.nameLength =
        static_cast<std::uint16_t>(std::min(std::strlen(from->d_name), sizeof entry.name - 1));
    entry.type = from->d_type;
    std::memcpy(entry.name, from->d_name, entry.nameLength);
    return &entry;
}

int removeIn(int folder, const char* path, int flags) {
    const bool isFolder = (flags & kMacRemoveFolder) != 0;
    return unlinkat(hostFolder(folder), path, isFolder ? AT_REMOVEDIR : 0);
}

int changeModeIn(int folder, const char* path, std::uint16_t mode, int flags) {
    const bool notThroughLink = (flags & kMacNotThroughLink) != 0;
    return fchmodat(hostFolder(folder), path, mode, notThroughLink ? AT_SYMLINK_NOFOLLOW : 0);
}

}  // namespace

void addFolders(SymbolTable& table) {
    table.addCall("_opendir", opendir);
    table.addCall("_fdopendir", fdopendir);
    table.addCall("_readdir", nextEntry);
    table.addCall("_closedir", closedir);
    table.addCall("_openat", varOpenat);
    table.addCall("_unlinkat", removeIn);
    table.addCall("_fchmodat", changeModeIn);
}

}  // namespace macho::libsystem
