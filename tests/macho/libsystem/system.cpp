#include <sys/utsname.h>
#include <syslog.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "symbol_table.h"
#include "variadic.h"

// The calls that the product has on this system under a Mac's names, with a Mac's layouts.
#include <mach-o/dyld.h>
#include <sys/sysctl.h>

// The levels are the same.
MAC_CALL int macSyslog(int level, const char* format, MacArguments arguments) {
    vsyslog(level, format, hostArguments(arguments));
    return 0;
}
MAC_VARIADIC_2(int, Syslog, int, const char*);

namespace macho::libsystem {

namespace {

// <sys/utsname.h> of a Mac.
struct MacNames {
    char system[256];
    char node[256];
    char release[256];
    char version[256];
    char machine[256];
};

template <std::size_t kSize>
void copyName(char (&to)[kSize], const char* from) {
    std::snprintf(to, kSize, "%s", from);
}

int nameSystem(MacNames* names) {
    utsname host;
    if (uname(&host) != 0) return -1;
    const bool isArm = std::strcmp(host.machine, "aarch64") == 0;
    *names = {};
    copyName(names->system, "Darwin");
    copyName(names->node, host.nodename);
    copyName(names->release, host.release);
    copyName(names->version, host.version);
    copyName(names->machine, isArm ? "arm64" : host.machine);
    return 0;
}

// <locale.h> of a Mac counts its categories in this order.
constexpr int kCategories[] = {LC_ALL,     LC_COLLATE, LC_CTYPE,   LC_MONETARY,
                               LC_NUMERIC, LC_TIME,    LC_MESSAGES};

char* setLocale(int category, const char* locale) {
    const bool isKnown = category >= 0 && category < static_cast<int>(std::size(kCategories));
    return isKnown ? std::setlocale(kCategories[category], locale) : nullptr;
}

// Locale objects: there is one, C, and nobody looks into it.
void* newLocale(int /*mask*/, const char* /*name*/, void* /*base*/) {
    static char plain;
    return &plain;
}
int freeLocale(void* /*locale*/) { return 0; }
void* useLocale(void* locale) { return locale; }

// <crt_externs.h> of a Mac: what the program was started with.
char g_program[] = "image";
char* g_arguments[] = {g_program, nullptr};
char** g_argumentList = g_arguments;
int g_argumentCount = 1;
int* argumentCount() { return &g_argumentCount; }
char*** argumentList() { return &g_argumentList; }

// <mach/task.h>: a process's threads are not to be had here.
std::uint32_t g_task = 0;
int listThreads(std::uint32_t /*task*/, void* /*list*/, void* /*count*/) {
    constexpr int kFailure = 5;
    return kFailure;
}
int freePages(std::uint32_t /*task*/, std::uintptr_t /*address*/, std::uintptr_t /*size*/) {
    return 0;
}

}  // namespace

void addSystem(SymbolTable& table) {
    table.addCall("_uname", nameSystem);
    table.addCall("_setlocale", setLocale);
    table.addCall("_newlocale", newLocale);
    table.addCall("_freelocale", freeLocale);
    table.addCall("_uselocale", useLocale);
    table.addCall("_sysctl", sysctl);
    table.addCall("__NSGetExecutablePath", _NSGetExecutablePath);
    table.addCall("__NSGetArgc", argumentCount);
    table.addCall("__NSGetArgv", argumentList);
    table.addCall("_syslog", varSyslog);
    table.addVariable("_mach_task_self_", &g_task);
    table.addCall("_task_threads", listThreads);
    table.addCall("_vm_deallocate", freePages);
}

}  // namespace macho::libsystem
