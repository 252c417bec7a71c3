#include "SystemInfo.h"

#include <sys/time.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "HexText.h"

namespace {

// The two kinds of strerror_r: one returns a status and fills the buffer, the other returns a text
// that may lie elsewhere.
[[maybe_unused]] const char* errorText(int /*status*/, const char* buffer) { return buffer; }
[[maybe_unused]] const char* errorText(const char* text, const char* /*buffer*/) { return text; }

template <class Number>
CString bytesOf(Number number) {
    std::array<unsigned char, sizeof number> bytes;
    std::memcpy(bytes.data(), &number, sizeof number);
    return BinToHex(bytes.data(), sizeof number, 0);
}

}  // namespace

unsigned int GetTickCount() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return static_cast<unsigned int>(now.tv_sec * 1000LL + now.tv_usec / 1000);
}

unsigned int GetCurrentProcessId() { return static_cast<unsigned int>(getpid()); }

CString SGenerateID() {
    static const unsigned int startTick = GetTickCount();
    static const unsigned int processId = GetCurrentProcessId();
    static std::atomic<unsigned long long> count{0};
    return bytesOf(processId) + "-" + bytesOf(startTick) + "-" + bytesOf(++count);
}

CString SGetErrorDescription(unsigned int err) {
    std::array<char, 256> buffer{};
    return errorText(strerror_r(static_cast<int>(err), buffer.data(), buffer.size()),
                     buffer.data());
}

CString SGetLastError() { return SGetErrorDescription(static_cast<unsigned int>(errno)); }

CString SGetEnvironmentVariable(const char* name, const char* def) {
    const char* const value = name != nullptr ? std::getenv(name) : nullptr;
    return value != nullptr && *value != '\0' ? value : def;
}

CString SGetSystemInfo(unsigned int /*reserved*/) {
    utsname system{};
    uname(&system);
    const CString rule('=', 74);
    return rule + "\nSystem: " + system.sysname + "\nNode name: " + system.nodename +
           "\nRelease: " + system.release + "\nKernel version: " + system.version +
           "\nModel: " + system.machine + "\n" + rule + "\n";
}
