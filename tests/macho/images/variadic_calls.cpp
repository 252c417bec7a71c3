// Calls every function of libSystem's that takes a variable number of arguments, once for each way
// that arguments travel. What comes back is text, which the test outside compares.

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <string>

#define SHOWN extern "C" __attribute__((visibility("default")))

namespace {

char g_text[1000];

const char* keep(const std::string& text) {
    std::snprintf(g_text, sizeof g_text, "%s", text.c_str());
    return g_text;
}

template <typename... Values>
const char* list(const Values&... values) {
    std::ostringstream text;
    ((text << values << ' '), ...);
    return keep(text.str());
}

[[gnu::format(printf, 1, 2)]] std::string viaVsnprintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), ' ');
    va_end(arguments);
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

[[gnu::format(printf, 1, 2)]] std::string viaVasprintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char* made = nullptr;
    vasprintf(&made, format, arguments);
    va_end(arguments);
    std::string text = made;
    free(made);
    return text;
}

[[gnu::format(printf, 1, 2)]] void viaVprintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

[[gnu::format(printf, 2, 3)]] void viaVfprintf(FILE* file, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(file, format, arguments);
    va_end(arguments);
}

[[gnu::format(scanf, 2, 3)]] int viaVsscanf(const char* text, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int count = std::vsscanf(text, format, arguments);
    va_end(arguments);
    return count;
}

// A file of its own, gone when it is closed.
FILE* scratch() { return std::tmpfile(); }

std::string contentOf(FILE* file) {
    std::rewind(file);
    std::string text(500, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

}  // namespace

SHOWN const char* callSnprintf() {
    std::snprintf(g_text, sizeof g_text, "%d %s %g %c %lld %u %x %5.3f %-6s| %zu %ld %hd %hhd %%",
                  -1, "two", 3.5, '4', 5LL << 40, 6U, 0x77, 8.25, "nine", std::size_t{10}, -11L,
                  static_cast<short>(12), static_cast<signed char>(-13));
    return g_text;
}

SHOWN const char* callSnprintfWithWidths() {
    std::snprintf(g_text, sizeof g_text, "%*d|%-*s|%.*f|%.*s|", 6, 7, 5, "ab", 2, 3.14159, 3,
                  "abcdef");
    return g_text;
}

SHOWN const char* callSnprintfWithLongDoubles() {
    const long double value = 1.25L;
    std::snprintf(g_text, sizeof g_text, "%Lf %Lg %.3Le %d %s", value, value * 2, value * 1000, 42,
                  "after");
    return g_text;
}

SHOWN const char* callSnprintfWithTooLittleRoom() {
    char text[4];
    const int length = std::snprintf(text, sizeof text, "%s%d", "cut", 100);
    return list(text, length);
}

SHOWN const char* callVsnprintf() {
    return keep(viaVsnprintf("%d %s %g %Lg %lld", 1, "two", 3.5, 4.5L, 5LL << 40));
}

SHOWN const char* callAsprintf() {
    char* text = nullptr;
    const int length = asprintf(&text, "as %d %s %f", 3, "x", 0.5);
    const char* result = list(text, length);
    free(text);
    return result;
}

SHOWN const char* callVasprintf() { return keep(viaVasprintf("%s %d %.2f", "va", 7, 0.25)); }

// The stream asks for these with a locale between the named arguments.
SHOWN const char* callThroughStreams() {
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << 2.5L << ' ' << 1e3 << ' ' << std::hexfloat << 1.0
         << ' ' << std::defaultfloat << -5LL << ' ' << 7ULL << ' ' << std::hex << 255 << ' '
         << reinterpret_cast<void*>(0x10);
    return keep(text.str());
}

SHOWN const char* callThroughStreamsForReading() {
    std::istringstream text("2.5 3.5 0x1f 12345678901 1e2 0x20");
    long double longReal = 0;
    double real = 0;
    int number = 0;
    long long large = 0;
    float small = 0;
    void* pointer = nullptr;
    text >> longReal >> real >> std::hex >> number >> std::dec >> large >> small >> pointer;
    return list(longReal, real, number, large, small, pointer);
}

SHOWN const char* callPrintf() {
    std::printf("%d %s %g %c", 1, "two", 3.5, '4');
    std::fflush(stdout);
    return "";
}

SHOWN const char* callVprintf() {
    viaVprintf("%s %d %Lg", "vprintf", 1, 2.5L);
    std::fflush(stdout);
    return "";
}

SHOWN const char* callFprintf() {
    FILE* file = scratch();
    std::fprintf(file, "%d %s %.2f %c%c", 6, "fp", 2.75, 'o', 'k');
    return keep(contentOf(file));
}

SHOWN const char* callVfprintf() {
    FILE* file = scratch();
    viaVfprintf(file, "%s %lld", "vfp", 1LL << 40);
    return keep(contentOf(file));
}

SHOWN const char* callSscanf() {
    int first = 0, second = 0;
    double real = 0;
    float small = 0;
    long double longReal = 0;
    char word[20] = {}, set[20] = {};
    long long large = 0;
    short half = 0;
    signed char quarter = 0;
    const int count = std::sscanf("12 -7 2.5 1.25 9.75 word [in%] 123456789012 77 -5",
                                  "%d %d %lf %f %Lf %19s [%19[^]]] %lld %hd %hhd", &first, &second,
                                  &real, &small, &longReal, word, set, &large, &half, &quarter);
    return list(count, first, second, real, small, longReal, word, set, large, half,
                static_cast<int>(quarter));
}

SHOWN const char* callVsscanf() {
    int first = 0, second = 0;
    char word[20] = {};
    const int count = viaVsscanf("3,4 five", "%d,%d %19s", &first, &second, word);
    return list(count, first, second, word);
}

SHOWN const char* callFscanf() {
    FILE* file = scratch();
    std::fputs("8 nine 10.5", file);
    std::rewind(file);
    int number = 0;
    char word[20] = {};
    double real = 0;
    const int count = std::fscanf(file, "%d %19s %lf", &number, word, &real);
    std::fclose(file);
    return list(count, number, word, real);
}

SHOWN const char* callOpen() {
    char name[] = "/tmp/variadic-XXXXXX";
    close(mkstemp(name));
    unlink(name);
    const int made = open(name, O_CREAT | O_EXCL | O_WRONLY, 0640);
    struct stat status = {};
    const int described = fstat(made, &status);
    close(made);
    const int again = open(name, O_RDONLY);
    const bool opened = again >= 0;
    close(again);
    unlink(name);
    return list(made >= 0, described, status.st_mode & 0777, opened);
}

SHOWN const char* callOpenat() {
    char name[] = "/tmp/variadic-XXXXXX";
    if (mkdtemp(name) == nullptr) return "no folder";
    const int folder = open(name, O_RDONLY | O_DIRECTORY);
    const int made = openat(folder, "file", O_CREAT | O_WRONLY, 0604);
    struct stat status = {};
    const int described = fstat(made, &status);
    const int removed = unlinkat(folder, "file", 0);
    close(made);
    close(folder);
    const int removedFolder = unlinkat(AT_FDCWD, name, AT_REMOVEDIR);
    return list(made >= 0, described, status.st_mode & 0777, removed, removedFolder);
}

SHOWN const char* callFcntl() {
    int ends[2] = {};
    if (pipe(ends) != 0) return "no pipe";
    const int before = fcntl(ends[0], F_GETFL) & O_NONBLOCK;
    const int set = fcntl(ends[0], F_SETFL, O_NONBLOCK);
    const int after = fcntl(ends[0], F_GETFL) & O_NONBLOCK;
    const int copy = fcntl(ends[0], F_DUPFD, 50);
    const int marked = fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    const int mark = fcntl(ends[0], F_GETFD);
    for (const int file : {ends[0], ends[1], copy}) close(file);
    return list(before, set, after == O_NONBLOCK, copy >= 50, marked, mark);
}

SHOWN const char* callSyslog() {
    syslog(LOG_DEBUG, "%s %d %g", "logged", 1, 2.5);
    return "";
}

SHOWN const char* callExecl() {
    const pid_t child = fork();
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", "test \"$1$2$3$4$5$6\" = abcdef && exit 7", "x", "a", "b", "c",
              "d", "e", "f", static_cast<char*>(nullptr));
        _exit(9);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return list(WIFEXITED(status), WEXITSTATUS(status));
}
