#include "fuzz_input.h"

#include <utility>

unsigned char FuzzInput::byte() {
    if (m_rest.empty()) return 0;
    const char first = m_rest.front();
    m_rest.remove_prefix(1);
    return static_cast<unsigned char>(first);
}

std::uint32_t FuzzInput::number() {
    std::uint32_t number = 0;
    for (int shift = 0; shift < 32; shift += 8) number |= std::uint32_t{byte()} << shift;
    return number;
}

std::size_t FuzzInput::below(std::size_t count) {
    return (count <= 256 ? byte() : number()) % count;
}

std::string FuzzInput::text() {
    std::string text;
    while (!m_rest.empty()) {
        char c = static_cast<char>(byte());
        if (c == '|') break;
        if (c == '\\') c = static_cast<char>(byte());
        text += c;
    }
    return text;
}

std::string FuzzInput::rest() { return std::string(std::exchange(m_rest, {})); }
