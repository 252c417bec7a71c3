#include "AfxDebug.h"

#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

constinit std::atomic<std::uint32_t> g_dwDebugFlags{2};

namespace {

constexpr std::uint32_t kToStandardOutput = 1;
constexpr std::uint32_t kToSystemLog = 2;

}  // namespace

bool AfxIsValidString(const char* s, int /*length*/) { return s != nullptr; }

bool AfxIsValidAddress(const void* p, std::size_t /*size*/, bool /*writable*/) {
    return p != nullptr;
}

std::uint32_t AfxAssertFailed(const char* expression, const char* file, unsigned int line,
                              const char* function) {
    const std::uint32_t flags = g_dwDebugFlags;
    if ((flags & kToSystemLog) != 0) {
        syslog(LOG_INFO, "%s:%u: %s\nAssertion '%s' failed, continuing...\n", file, line, function,
               expression);
    }
    return flags & kToStandardOutput;
}

int AfxTrace(const char* format, ...) {
    const std::uint32_t flags = g_dwDebugFlags;
    if (flags == 0) return 0;
    if (format == nullptr) format = "";

    std::array<char, 10240> text{};
    const std::size_t limit = text.size() - 1;
    const int prefix = snprintf(text.data(), limit, "[%4d] ", static_cast<int>(getpid()));
    const std::size_t start = static_cast<std::size_t>(prefix);
    va_list args;
    va_start(args, format);
    if (vsnprintf(text.data() + start, limit - start, format, args) < 0) text.back() = '\0';
    va_end(args);

    if ((flags & kToSystemLog) != 0) syslog(LOG_DEBUG, "%s", text.data());
    if ((flags & kToStandardOutput) != 0) {
        // Debug output that cannot be written has nowhere to be reported.
        [[maybe_unused]] const ssize_t written =
            write(STDOUT_FILENO, text.data(), strlen(text.data()));
    }
    return 0;
}
