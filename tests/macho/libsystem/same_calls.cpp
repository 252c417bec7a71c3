#include <dlfcn.h>

#include <string_view>
#include <unordered_set>

#include "symbol_table.h"

namespace macho::libsystem {

namespace {

// Same name, same arguments, same layouts on both systems.
const std::unordered_set<std::string_view>& alike() {
    static const std::unordered_set<std::string_view> names = {
        // memory and texts
        "abort", "aligned_alloc", "calloc", "free", "malloc", "memchr", "memcmp", "memcpy",
        "memmem", "memmove", "memset", "posix_memalign", "realloc", "strcasecmp", "strchr",
        "strcmp", "strcpy", "strcspn", "strdup", "strlen", "strncasecmp", "strncmp", "strncpy",
        "strnlen", "strpbrk", "strrchr", "strspn", "strstr", "strtod", "strtof", "strtol",
        "strtoll", "strtoul", "strtoull", "wcslen", "wmemchr", "wmemcmp", "wmemcpy", "wmemmove",
        "wmemset", "mbstowcs", "wcstombs", "fputwc", "getwc", "ungetwc", "atoi", "atol", "qsort",
        "bsearch", "catopen", "catgets", "catclose",
        // files
        "close", "dup", "dup2", "fclose", "fdopen", "feof", "ferror", "fflush", "fgetc", "fgets",
        "fileno", "flock", "fputc", "fputs", "fread", "fseek", "fseeko", "fsync", "ftell", "ftello",
        "ftruncate", "fwrite", "getc", "getcwd", "isatty", "link", "lseek", "mkdtemp", "mkstemp",
        "pipe", "pread", "putchar", "puts", "pwrite", "read", "readlink", "remove", "rename",
        "rewind", "rmdir", "setbuf", "setvbuf", "symlink", "tmpfile", "truncate", "ungetc",
        "unlink", "write", "writev", "fchown", "chown", "access", "chdir",
        // processes and users
        "_exit", "execv", "fork", "getegid", "getenv", "geteuid", "getgid", "getpgid", "getpid",
        "getppid", "getuid", "setenv", "sleep", "umask", "unsetenv", "usleep",
        // time and names
        "gethostname", "gettimeofday", "gmtime_r", "localtime_r", "mktime", "nanosleep", "strftime",
        "time", "tzset",
        // threads
        "pthread_detach", "pthread_equal", "pthread_getspecific", "pthread_join", "pthread_kill",
        "pthread_self", "pthread_setspecific", "sched_yield",
        // sockets
        "htonl", "inet_addr", "inet_ntop", "listen", "recv", "send", "shutdown", "socketpair",
        // exceptions: both follow the C++ ABI's level I
        "_Unwind_Backtrace", "_Unwind_DeleteException", "_Unwind_GetIP", "_Unwind_GetIPInfo",
        "_Unwind_GetLanguageSpecificData", "_Unwind_GetRegionStart", "_Unwind_RaiseException",
        "_Unwind_Resume", "_Unwind_Resume_or_Rethrow", "_Unwind_SetGR", "_Unwind_SetIP"};
    return names;
}

// These take a locale as their last argument, which the plain function never looks at.
const std::unordered_set<std::string_view>& localeLast() {
    static const std::unordered_set<std::string_view> names = {
        "strtod_l",     "strtof_l",  "strtoll_l", "strtoull_l",  "strftime_l",
        "strcoll_l",    "strxfrm_l", "mbrtowc_l", "mbsrtowcs_l", "mbsnrtowcs_l",
        "mbtowc_l",     "mbrlen_l",  "wcrtomb_l", "wcscoll_l",   "wcsxfrm_l",
        "wcsnrtombs_l", "wctob_l",   "btowc_l",   "strtold_l"};
    return names;
}

}  // namespace

void* sameCall(const std::string& name) {
    if (name.empty() || name.front() != '_') return nullptr;
    std::string own = name.substr(1);
    if (localeLast().contains(own)) {
        own.resize(own.size() - 2);
    } else if (!alike().contains(own)) {
        return nullptr;
    }
    return dlsym(RTLD_DEFAULT, own.c_str());
}

}  // namespace macho::libsystem
