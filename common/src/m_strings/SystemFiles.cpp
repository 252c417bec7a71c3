#include "SystemFiles.h"

#include <mach-o/dyld.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "PathText.h"
#include "TextLength.h"
#include "URaise.h"

namespace {

constexpr char kModuleFileName[] = "SGetModuleFileName()";

std::string executablePath() {
    std::uint32_t size = 1024;
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        // Too small a buffer says what it should have been; any other failure says nothing.
        if (size <= path.size()) URaise(kModuleFileName, "GetModuleFileName() error ", errno);
        path.resize(size);
        if (_NSGetExecutablePath(path.data(), &size) != 0) {
            URaise(kModuleFileName, "path is too big (allocated memory)", size);
        }
    }
    return path.c_str();
}

// Resolves "." and ".." by the text alone.
std::string withoutDots(std::string_view path) {
    std::string result;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view segment = path.substr(at, end - at);
        at = end + 1;
        if (segment.empty() || segment == ".") continue;
        if (segment == "..") {
            result.resize(std::min(result.rfind('/'), result.size()));
        } else {
            result.append("/").append(segment);
        }
    }
    return result;
}

}  // namespace

CString SGetModuleFileName(void* /*module*/) {
    const std::string path = withoutDots(executablePath());
    return CString(path.data(), textLength(path.size()));
}

CString SGetModulePath(void* module) { return SGetFilePath(SGetModuleFileName(module), nullptr); }

CString SGetTempPath() { return "/tmp"; }

CString SGetTempFileName(const char* /*path*/, const char* /*prefix*/, unsigned int /*unique*/) {
    CString name = SGetTempPath() + "/XXXXXXXX";
    const int file = mkstemp(name.GetBuffer(name.GetLength()));
    const int error = errno;
    name.ReleaseBuffer();
    if (file < 0) {
        // Not by the raising helper: callers know the message without its beginning.
        constexpr auto place = SourcePlace::current();
        throw UException(-1, sourceUnit(place.file), "SGetTempFileName()", place.line,
                         "SGetTempPath() - error=%d", error);
    }
    close(file);
    unlink(name);
    return name;
}
