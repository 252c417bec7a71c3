#pragma once

#include <string>

/// @return where the build keeps the image that tests/macho/images/ makes of `name`.
inline std::string imagePath(const std::string& name) {
    return std::string(ZERVA_TEST_IMAGES) + "/" + name + ".bundle";
}
