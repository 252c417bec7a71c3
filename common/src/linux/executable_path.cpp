#include <mach-o/dyld.h>
#include <unistd.h>

#include <climits>
#include <cstring>

int _NSGetExecutablePath(char* path, std::uint32_t* size) {
    char link[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", link, sizeof link);
    if (length < 0) return -1;
    const auto needed = static_cast<std::uint32_t>(length) + 1;
    if (*size < needed) {
        *size = needed;
        return -1;
    }
    std::memcpy(path, link, needed - 1);
    path[needed - 1] = '\0';
    return 0;
}
