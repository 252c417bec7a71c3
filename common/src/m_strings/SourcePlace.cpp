#include "SourcePlace.h"

#include <string_view>

CString sourceUnit(const char* file) {
    // The platform's folder holds units; it is none.
    constexpr std::string_view sources = "common/src/";
    constexpr std::string_view platform = "mac/";

    const std::string_view path = file == nullptr ? "" : file;
    const std::size_t lastSlash = path.rfind('/');
    if (lastSlash == std::string_view::npos) return "";
    std::string_view unit = path.substr(lastSlash + 1);
    if (const std::size_t at = path.find(sources); at != std::string_view::npos) {
        unit = path.substr(at + sources.length());
        if (unit.starts_with(platform)) unit.remove_prefix(platform.length());
        unit = unit.substr(0, unit.find('/'));
    }
    return "/" + CString(unit.data(), static_cast<int>(unit.length()));
}
