#pragma once

/// Texts that are only bytes.

#include <random>
#include <string>
#include <string_view>

inline const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

inline std::string randomText(std::mt19937& random, std::size_t length) {
    std::string text(length, '\0');
    for (char& c : text) c = static_cast<char>(random());
    return text;
}
