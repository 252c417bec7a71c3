#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

/// The symbols of an ELF file, the hidden ones included: the addresses, relative to where the file
/// is loaded, of everything that its symbol table names.
///
/// Lets a test reach a loaded module's inner state without the module exporting it.
class ElfSymbols {
  public:
    /// Reads the 64-bit ELF file at `path`.
    /// Throws std::runtime_error when it is none, or carries no symbol table.
    explicit ElfSymbols(const std::string& path);

    /// @return the offset of `name` from the file's load address.
    /// Throws std::runtime_error, saying what is missing, when there is no such symbol.
    std::uintptr_t offsetOf(const std::string& name) const;

    /// The names that the file offers to others, sorted.
    const std::vector<std::string>& exported() const { return m_exported; }

  private:
    std::string m_path;
    std::unordered_map<std::string, std::uintptr_t> m_offsets;
    std::vector<std::string> m_exported;
};
