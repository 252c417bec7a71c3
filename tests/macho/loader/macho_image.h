#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mapping.h"
#include "thread_locals.h"
#include "unwind_tables.h"

namespace macho {

/// A bundle built for macOS, running inside this Linux process: the slice for this processor,
/// mapped, fixed up, its calls of libSystem bound to this system's functions or to stand-ins.
///
/// Loading runs the image's initialisers, destroying it runs its exit functions, as the system's
/// loader on a Mac does. Not for several threads at a time.
class MachoImage {
  public:
    /// Loads the bundle's module at `path`. Throws `ImageError` with the reason.
    explicit MachoImage(const std::string& path);
    ~MachoImage();
    MachoImage(const MachoImage&) = delete;
    MachoImage& operator=(const MachoImage&) = delete;

    /// @return the address of an exported name, without its leading underscore; null: not exported.
    void* symbol(const std::string& name) const;

    /// @return the address that the linker's map gives for something not exported.
    void* at(std::uint64_t linkedAddress) const { return m_mapping.at(linkedAddress); }

    /// All exported names, sorted, without their underscores.
    std::vector<std::string> exports() const;
    const std::vector<std::string>& imports() const { return m_imports; }

    /// Imported names that have no stand-in; a call of one ends the process and says so.
    const std::vector<std::string>& unbound() const { return m_unbound; }

    /// How many of the image's functions exceptions can pass through.
    std::size_t unwindableFunctions() const { return m_unwindTables->count(); }

  private:
    void* resolve(const std::string& name, bool isOptional);
    void runInitializers() const;
    void runTerminators() const;

    ImageFile m_file;
    Mapping m_mapping;
    std::map<std::string, std::uint64_t> m_exports;
    std::vector<std::string> m_imports;
    std::vector<std::string> m_unbound;
    std::unique_ptr<ThreadLocals> m_threadLocals;
    std::unique_ptr<UnwindTables> m_unwindTables;
};

}  // namespace macho
