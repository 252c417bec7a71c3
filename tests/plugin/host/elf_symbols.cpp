#include "elf_symbols.h"

#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

ElfSymbols::ElfSymbols(const std::string& path) : m_path(path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat facts = {};
    if (file < 0 || fstat(file, &facts) != 0) throw std::runtime_error(path + ": cannot be opened");
    m_size = static_cast<std::uint64_t>(facts.st_size);
    void* mapped = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file, 0);
    close(file);
    if (mapped == MAP_FAILED) throw std::runtime_error(path + ": cannot be mapped");
    m_file = static_cast<const char*>(mapped);
    const auto* header = recordsAt<Elf64_Ehdr>(0, 1);
    if (std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0 ||
        header->e_ident[EI_CLASS] != ELFCLASS64)
        throw std::runtime_error(path + ": not a 64-bit ELF file");
}

ElfSymbols::~ElfSymbols() { munmap(const_cast<char*>(m_file), m_size); }

// `count` records of the file; throws when they reach beyond its end.
template <typename Record>
const Record* ElfSymbols::recordsAt(std::uint64_t offset, std::uint64_t count) const {
    if (offset > m_size || count > (m_size - offset) / sizeof(Record))
        throw std::runtime_error(m_path + ": is cut short");
    return reinterpret_cast<const Record*>(m_file + offset);
}

// Shows the defined symbols of a table to `visit` until it answers true. @return whether it did.
template <typename Visit>
bool ElfSymbols::visitSymbols(std::uint32_t table, Visit visit) const {
    const auto* header = recordsAt<Elf64_Ehdr>(0, 1);
    const auto* sections = recordsAt<Elf64_Shdr>(header->e_shoff, header->e_shnum);
    for (const auto* section = sections; section != sections + header->e_shnum; ++section) {
        if (section->sh_type != table) continue;
        const Elf64_Shdr& names = sections[section->sh_link];
        const char* text = recordsAt<char>(names.sh_offset, names.sh_size);
        const std::uint64_t count = section->sh_size / sizeof(Elf64_Sym);
        const auto* symbols = recordsAt<Elf64_Sym>(section->sh_offset, count);
        for (const auto* symbol = symbols; symbol != symbols + count; ++symbol) {
            const bool isDefined = symbol->st_shndx != SHN_UNDEF && symbol->st_shndx != SHN_ABS;
            if (isDefined && visit(text + symbol->st_name, symbol->st_value)) return true;
        }
    }
    return false;
}

std::uintptr_t ElfSymbols::offsetOf(std::string_view wanted) const {
    std::uintptr_t found = 0;
    const bool exists = visitSymbols(SHT_SYMTAB, [&](const char* name, std::uintptr_t offset) {
        found = offset;
        return wanted == name;
    });
    if (exists) return found;
    throw std::runtime_error(m_path + ": has no symbol '" + std::string(wanted) +
                             "' (was the file stripped?)");
}

std::vector<std::string> ElfSymbols::exported() const {
    std::vector<std::string> names;
    visitSymbols(SHT_DYNSYM, [&](const char* name, std::uintptr_t) {
        names.emplace_back(name);
        return false;
    });
    std::sort(names.begin(), names.end());
    return names;
}
