#include <sys/utsname.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "symbol_table.h"

// The calls that the product has on this system under a Mac's names, with a Mac's layouts.
#include <mach-o/dyld.h>
#include <sys/sysctl.h>

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

}  // namespace

void addSystem(SymbolTable& table) {
    table.addCall("_uname", nameSystem);
    table.addCall("_setlocale", setLocale);
    table.addCall("_newlocale", newLocale);
    table.addCall("_freelocale", freeLocale);
    table.addCall("_uselocale", useLocale);
    table.addCall("_sysctl", sysctl);
    table.addCall("__NSGetExecutablePath", _NSGetExecutablePath);
}

}  // namespace macho::libsystem
