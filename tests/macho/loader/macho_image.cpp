#include "macho_image.h"

#include <unistd.h>

#include "exports_trie.h"
#include "fixups.h"
#include "libsystem/exits.h"
#include "libsystem/libsystem.h"
#include "unbound_trap.h"

namespace macho {

namespace {

constexpr std::uint32_t kInitializers = 9;  // section types S_MOD_INIT_FUNC_POINTERS,
constexpr std::uint32_t kTerminators = 10;  // S_MOD_TERM_FUNC_POINTERS

constexpr char kThreadLocalAccessor[] = "__tlv_bootstrap";

}  // namespace

MachoImage::MachoImage(const std::string& path)
    : m_file(path), m_mapping(m_file), m_exports(readExports(m_file.exportsTrie)) {
    applyRebases(m_file, m_mapping);
    applyBinds(m_file, m_mapping, [this](const std::string& name, bool isOptional) {
        return resolve(name, isOptional);
    });
    m_threadLocals = std::make_unique<ThreadLocals>(m_file, m_mapping);
    m_unwindTables = std::make_unique<UnwindTables>(m_file, m_mapping);
    m_mapping.protect();
    runInitializers();
}

MachoImage::~MachoImage() {
    libsystem::runExitFunctions(m_mapping.begin(), m_mapping.end());
    runTerminators();
    if (!libsystem::hasThreadExitFunctions()) return;
    // As on a Mac: an image that threads may still call at their end stays where it is.
    m_mapping.leave();
    m_unwindTables->leave();
    m_threadLocals.release()->leave();
}

void* MachoImage::resolve(const std::string& name, bool isOptional) {
    m_imports.push_back(name);
    if (name == kThreadLocalAccessor) return ThreadLocals::accessor();
    if (void* address = libsystem::find(name)) return address;
    if (isOptional) return nullptr;
    m_unbound.push_back(name);
    return makeUnboundTrap(name);
}

void MachoImage::runInitializers() const {
    using Initializer = void (*)(int, const char**, char**, const char**, void*);
    static const char* arguments[] = {"image", nullptr};
    for (const Section& section : m_file.sections) {
        if (section.type() != kInitializers) continue;
        for (std::uint64_t offset = 0; offset < section.size; offset += sizeof(Initializer)) {
            const auto run =
                load<Initializer>(m_mapping.at(section.address + offset, sizeof(Initializer)));
            run(1, arguments, environ, arguments, nullptr);
        }
    }
}

void MachoImage::runTerminators() const {
    using Terminator = void (*)();
    for (const Section& section : m_file.sections) {
        if (section.type() != kTerminators) continue;
        for (std::uint64_t end = section.size; end > 0; end -= sizeof(Terminator)) {
            const std::uint64_t place = section.address + end - sizeof(Terminator);
            load<Terminator>(m_mapping.at(place, sizeof(Terminator)))();
        }
    }
}

void* MachoImage::symbol(const std::string& name) const {
    const auto found = m_exports.find("_" + name);
    return found != m_exports.end() ? m_mapping.begin() + found->second : nullptr;
}

std::vector<std::string> MachoImage::exports() const {
    std::vector<std::string> names;
    for (const auto& [name, offset] : m_exports) names.push_back(name.substr(1));
    return names;
}

}  // namespace macho
