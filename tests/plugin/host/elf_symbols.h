#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The symbols of an ELF file, the hidden ones included: lets a test reach a loaded module's inner
/// state without the module exporting it. Holds the file mapped while it lives.
class ElfSymbols {
  public:
    /// Maps the 64-bit ELF file at `path`. Throws std::runtime_error when it is none.
    explicit ElfSymbols(const std::string& path);
    ElfSymbols(const ElfSymbols&) = delete;
    ElfSymbols& operator=(const ElfSymbols&) = delete;
    ~ElfSymbols();

    /// @return how far `name` lies from where the file is loaded.
    /// Throws std::runtime_error, saying what is missing, when there is no such symbol.
    std::uintptr_t offsetOf(std::string_view name) const;

    /// @return the names that the file offers to others, sorted.
    std::vector<std::string> exported() const;

  private:
    template <typename Visit>
    bool visitSymbols(std::uint32_t table, Visit visit) const;
    template <typename Record>
    const Record* recordsAt(std::uint64_t offset, std::uint64_t count) const;

    std::string m_path;
    const char* m_file = nullptr;
    std::uint64_t m_size = 0;
};
