#include "elf_symbols.h"

#include <elf.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <vector>

namespace {

std::vector<char> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path + ": cannot be opened");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// `count` records of the file; throws when they reach beyond its end.
template <typename Record>
std::span<const Record> recordsAt(const std::vector<char>& file, std::uint64_t offset,
                                  std::uint64_t count) {
    if (offset > file.size() || count > (file.size() - offset) / sizeof(Record))
        throw std::runtime_error("ELF file is cut short");
    return {reinterpret_cast<const Record*>(file.data() + offset), count};
}

}  // namespace

ElfSymbols::ElfSymbols(const std::string& path) : m_path(path) {
    const std::vector<char> file = readFile(path);
    const Elf64_Ehdr& header = recordsAt<Elf64_Ehdr>(file, 0, 1).front();
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64)
        throw std::runtime_error(path + ": not a 64-bit ELF file");

    const auto sections = recordsAt<Elf64_Shdr>(file, header.e_shoff, header.e_shnum);
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_SYMTAB && section.sh_type != SHT_DYNSYM) continue;
        const Elf64_Shdr& names = sections[section.sh_link];
        const char* text = recordsAt<char>(file, names.sh_offset, names.sh_size).data();
        const auto count = section.sh_size / sizeof(Elf64_Sym);
        for (const Elf64_Sym& symbol : recordsAt<Elf64_Sym>(file, section.sh_offset, count)) {
            if (symbol.st_shndx == SHN_UNDEF || symbol.st_shndx == SHN_ABS) continue;
            const char* symbolName = text + symbol.st_name;
            if (section.sh_type == SHT_SYMTAB) m_offsets[symbolName] = symbol.st_value;
            if (section.sh_type == SHT_DYNSYM) m_exported.emplace_back(symbolName);
        }
    }
    std::sort(m_exported.begin(), m_exported.end());
    if (m_offsets.empty())
        throw std::runtime_error(path + ": no symbol table (was the file stripped?)");
}

std::uintptr_t ElfSymbols::offsetOf(const std::string& name) const {
    const auto found = m_offsets.find(name);
    if (found == m_offsets.end())
        throw std::runtime_error(m_path + ": has no symbol '" + name + "'");
    return found->second;
}
