#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "open_flags.h"
#include "symbol_table.h"
#include "variadic.h"

using macho::libsystem::hostOpenFlags;
using macho::libsystem::kMacCreate;
using macho::libsystem::macOpenFlags;

MAC_CALL int macOpen(const char* path, int flags, MacArguments arguments) {
    const int mode = (flags & kMacCreate) != 0 ? MAC_NEXT(arguments, int) : 0;
    return open(path, hostOpenFlags(flags), mode);
}
MAC_VARIADIC_2(int, Open, const char*, int);

MAC_CALL int macFcntl(int file, int command, MacArguments arguments) {
    constexpr int kMacDuplicateCloseOnExec = 67;
    const long argument = MAC_NEXT(arguments, long);
    switch (command) {
        case F_DUPFD:
        case F_GETFD:
        case F_SETFD:
            return fcntl(file, command, argument);
        case F_GETFL: {
            const int flags = fcntl(file, F_GETFL);
            return flags < 0 ? flags : macOpenFlags(flags);
        }
        case F_SETFL:
            return fcntl(file, F_SETFL, hostOpenFlags(static_cast<int>(argument)));
        case kMacDuplicateCloseOnExec:
            return fcntl(file, F_DUPFD_CLOEXEC, argument);
        default:
            errno = EINVAL;
            return -1;
    }
}
MAC_VARIADIC_2(int, Fcntl, int, int);

namespace macho::libsystem {

namespace {

// A Mac's record of a file, in the form with long file numbers (<sys/stat.h>).
struct MacStat {
    std::int32_t device;
    std::uint16_t mode;
    std::uint16_t links;
    std::uint64_t number;
    std::uint32_t user;
    std::uint32_t group;
    std::int32_t specialDevice;
    std::int32_t padding;
    timespec accessed;
    timespec modified;
    timespec changed;
    timespec born;
    std::int64_t size;
    std::int64_t blocks;
    std::int32_t blockSize;
    std::uint32_t flags;
    std::uint32_t generation;
    std::int32_t spare;
    std::int64_t spares[2];
};
static_assert(sizeof(MacStat) == 144);

int convert(int result, const struct stat& from, MacStat* to) {
    if (result != 0) return result;
    *to = {};
    to->device = static_cast<std::int32_t>(from.st_dev);
    to->mode = static_cast<std::uint16_t>(from.st_mode);
    to->links = static_cast<std::uint16_t>(from.st_nlink);
    to->number = from.st_ino;
    to->user = from.st_uid;
    to->group = from.st_gid;
    to->accessed = from.st_atim;
    to->modified = from.st_mtim;
    to->changed = from.st_ctim;
    to->born = from.st_ctim;
    to->size = from.st_size;
    to->blocks = from.st_blocks;
    to->blockSize = static_cast<std::int32_t>(from.st_blksize);
    return 0;
}

int describePath(const char* path, MacStat* to) {
    struct stat record;
    return convert(stat(path, &record), record, to);
}

int describeLink(const char* path, MacStat* to) {
    struct stat record;
    return convert(lstat(path, &record), record, to);
}

int describeFile(int file, MacStat* to) {
    struct stat record;
    return convert(fstat(file, &record), record, to);
}

// A mode is a word of 16 bits on a Mac.
using MacMode = std::uint16_t;
int changeMode(const char* path, MacMode mode) { return chmod(path, mode); }
int changeFileMode(int file, MacMode mode) { return fchmod(file, mode); }
int makeFolder(const char* path, MacMode mode) { return mkdir(path, mode); }
int makePipe(const char* path, MacMode mode) { return mkfifo(path, mode); }

// The names of the streams are variables there.
FILE* g_input;
FILE* g_output;
FILE* g_errors;

}  // namespace

void addFiles(SymbolTable& table) {
    g_input = stdin;
    g_output = stdout;
    g_errors = stderr;
    table.addVariable("___stdinp", &g_input);
    table.addVariable("___stdoutp", &g_output);
    table.addVariable("___stderrp", &g_errors);
    table.addCall("_open", varOpen);
    table.addCall("_fcntl", varFcntl);
    table.addCall("_fopen", std::fopen);
    table.addCall("_stat", describePath);
    table.addCall("_lstat", describeLink);
    table.addCall("_fstat", describeFile);
    table.addCall("_chmod", changeMode);
    table.addCall("_fchmod", changeFileMode);
    table.addCall("_mkdir", makeFolder);
    table.addCall("_mkfifo", makePipe);
}

}  // namespace macho::libsystem
