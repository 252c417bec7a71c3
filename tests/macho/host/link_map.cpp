#include "link_map.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

LinkMap::LinkMap(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path + " cannot be opened; scripts/bundle writes it");
    std::string line;
    while (std::getline(file, line) && line != "# Symbols:") {
    }
    // Each line: address, size, "[ 7]" for the file, name; what was left out has no address.
    while (std::getline(file, line)) {
        if (!line.starts_with("0x")) continue;
        const std::size_t name = line.find(']');
        if (name == std::string::npos) continue;
        m_addresses.emplace(line.substr(name + 2), std::stoull(line, nullptr, 16));
    }
}

std::uint64_t LinkMap::addressOf(const std::string& name) const {
    const auto found = m_addresses.find("_" + name);
    if (found == m_addresses.end()) throw std::runtime_error("the module has no '" + name + "'");
    return found->second;
}
