#include <dlfcn.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "errors.h"
#include "libsystem.h"
#include "signals.h"
#include "symbol_table.h"
#include "variadic.h"

MAC_CALL int macExecl(const char* path, char* first, MacArguments arguments) {
    std::vector<char*> list = {first};
    while (list.back() != nullptr) list.push_back(MAC_NEXT(arguments, char*));
    return execv(path, list.data());
}
MAC_VARIADIC_2(int, Execl, const char*, char*);

namespace macho::libsystem {

namespace {

// <pwd.h> of a Mac.
struct MacUser {
    char* name;
    char* password;
    std::uint32_t user;
    std::uint32_t group;
    std::int64_t changeTime;
    char* accessClass;
    char* fullName;
    char* home;
    char* shell;
    std::int64_t expiry;
};
static_assert(sizeof(MacUser) == 72);

MacUser convert(const passwd& from) {
    static char none[] = "";
    return {from.pw_name, from.pw_passwd, from.pw_uid, from.pw_gid,   0,
            none,         from.pw_gecos,  from.pw_dir, from.pw_shell, 0};
}

MacUser* userById(uid_t id) {
    const passwd* found = getpwuid(id);
    if (found == nullptr) return nullptr;
    static MacUser user;
    user = convert(*found);
    return &user;
}

int copyUserById(uid_t id, MacUser* user, char* buffer, std::size_t size, MacUser** result) {
    passwd record;
    passwd* found = nullptr;
    const int error = getpwuid_r(id, &record, buffer, size, &found);
    if (found != nullptr) *user = convert(record);
    *result = found != nullptr ? user : nullptr;
    return macError(error);
}

// The status word is the same but for the signals' numbers.
pid_t waitForProcess(pid_t process, int* status, int options) {
    int word = 0;
    const pid_t ended = waitpid(process, &word, options);
    if (ended <= 0 || status == nullptr) return ended;
    if (WIFSIGNALED(word)) word = (word & ~0x7F) | macSignal(WTERMSIG(word));
    if (WIFSTOPPED(word)) word = macSignal(WSTOPSIG(word)) << 8 | 0x7F;
    *status = word;
    return ended;
}

// What an image looks up is what it would have imported.
void* lookUp(void* /*library*/, const char* name) { return find("_" + std::string(name)); }

// <sys/resource.h> of a Mac: the first six limits bear the same numbers, "none" is another one.
constexpr rlim_t kMacNone = (rlim_t{1} << 63) - 1;

__rlimit_resource_t hostLimit(int which) {
    constexpr __rlimit_resource_t kHigher[] = {RLIMIT_MEMLOCK, RLIMIT_NPROC, RLIMIT_NOFILE};
    return which < 6 ? static_cast<__rlimit_resource_t>(which) : kHigher[(which - 6) % 3];
}

int getLimit(int which, rlimit* limit) {
    const int result = getrlimit(hostLimit(which), limit);
    if (result != 0) return result;
    if (limit->rlim_cur == RLIM_INFINITY) limit->rlim_cur = kMacNone;
    if (limit->rlim_max == RLIM_INFINITY) limit->rlim_max = kMacNone;
    return 0;
}

int setLimit(int which, const rlimit* limit) {
    rlimit host = *limit;
    if (host.rlim_cur == kMacNone) host.rlim_cur = RLIM_INFINITY;
    if (host.rlim_max == kMacNone) host.rlim_max = RLIM_INFINITY;
    return setrlimit(hostLimit(which), &host);
}

}  // namespace

void addProcesses(SymbolTable& table) {
    table.addCall("_execl", varExecl);
    table.addCall("_getrlimit", getLimit);
    table.addCall("_setrlimit", setLimit);
    table.addCall("_getpwuid", userById);
    table.addCall("_getpwuid_r", copyUserById);
    table.addCall("_waitpid", waitForProcess);
    table.addVariable("_environ", &environ);
    table.addCall("_dlopen", dlopen);
    table.addCall("_dlsym", lookUp);
}

}  // namespace macho::libsystem
