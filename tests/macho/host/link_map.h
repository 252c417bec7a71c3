#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

/// What the linker has noted of a module: where it put everything that has a name, also what the
/// module itself no longer names.
class LinkMap {
  public:
    /// Reads the linker's map file at `path`. Throws std::runtime_error when there is none.
    explicit LinkMap(const std::string& path);

    /// @return the address that `name` was linked to. Throws std::runtime_error when it is unknown.
    std::uint64_t addressOf(const std::string& name) const;

  private:
    std::unordered_map<std::string, std::uint64_t> m_addresses;
};
