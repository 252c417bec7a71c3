#include <sys/sysctl.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

namespace {

// What the BSD kernel adds to the size it reports, so that a table that grows a little still fits.
constexpr size_t kSpareRecords = 5;

constexpr char kKernelName[] = "kernel_task";

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

bool isProcessListing(const int* name, u_int length) {
    return (length == 3 || length == 4) && name[0] == CTL_KERN && name[1] == KERN_PROC &&
           name[2] == KERN_PROC_ALL;
}

// The next process id that /proc lists; 0 at the end.
pid_t nextPid(DIR* proc) {
    while (const dirent* entry = readdir(proc)) {
        const char* end = entry->d_name + strlen(entry->d_name);
        pid_t pid = 0;
        const auto parsed = std::from_chars(entry->d_name, end, pid);
        if (parsed.ec == std::errc() && parsed.ptr == end) return pid;
    }
    return 0;
}

// Reads a process's short name; false when it cannot be had, as of a process that has ended.
bool readName(DIR* proc, pid_t pid, char (&name)[MAXCOMLEN + 1]) {
    char path[32] = {};
    char* end = std::to_chars(path, path + sizeof path - sizeof "/comm", pid).ptr;
    memcpy(end, "/comm", sizeof "/comm");
    const int file = openat(dirfd(proc), path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    ssize_t count = read(file, name, MAXCOMLEN);
    close(file);
    if (count <= 0) {
        errno = ESRCH;
        return false;
    }
    // The name may hold line ends of its own; only the last one is the file's.
    if (name[count - 1] == '\n') --count;
    name[count] = '\0';
    return true;
}

// A reason to give up: without descriptors or memory, living processes would be left out.
bool isShortage(int error) { return error == EMFILE || error == ENFILE || error == ENOMEM; }

int reportSize(DIR* proc, size_t& size) {
    size_t records = 1 + kSpareRecords;
    while (nextPid(proc) != 0) ++records;
    size = records * sizeof(kinfo_proc);
    return 0;
}

// Appends a record; false, with the reason in errno, when there is no room left.
bool append(const kinfo_proc& record, char* buffer, size_t room, size_t& size) {
    if (room - size < sizeof record) {
        errno = ENOMEM;
        return false;
    }
    memcpy(buffer + size, &record, sizeof record);
    size += sizeof record;
    return true;
}

int fillRecords(DIR* proc, char* buffer, size_t& size) {
    const size_t room = size;
    size = 0;
    kinfo_proc record = {};
    memcpy(record.kp_proc.p_comm, kKernelName, sizeof kKernelName);
    if (!append(record, buffer, room, size)) return -1;
    while (const pid_t pid = nextPid(proc)) {
        record = {};
        record.kp_proc.p_pid = pid;
        if (readName(proc, pid, record.kp_proc.p_comm)) {
            if (!append(record, buffer, room, size)) return -1;
        } else if (isShortage(errno)) {
            return -1;
        }
    }
    return 0;
}

}  // namespace

int sysctl(int* name, u_int namelen, void* oldp, size_t* oldlenp, void* newp, size_t /*newlen*/) {
    if (!isProcessListing(name, namelen) || oldlenp == nullptr) {
        errno = ENOENT;
        return -1;
    }
    if (newp != nullptr) {
        errno = EPERM;
        return -1;
    }
    const Directory proc(opendir("/proc"));
    if (!proc) return -1;
    if (oldp == nullptr) return reportSize(proc.get(), *oldlenp);
    return fillRecords(proc.get(), static_cast<char*>(oldp), *oldlenp);
}
