#pragma once

#include <memory>
#include <string>
#include <vector>

#include "IUErrorLog.h"
#include "npapi/npfunctions.h"

/// A loaded plug-in as a browser sees it: three functions. Tests reach what the plug-in keeps to
/// itself by name, whatever the kind of file it was loaded from.
class PluginModule {
  public:
    virtual ~PluginModule() = default;

    NPError (*initialize)(NPNetscapeFuncs*) = nullptr;
    NPError (*getEntryPoints)(NPPluginFuncs*) = nullptr;
    void (*shutdown)() = nullptr;

    /// @return the address of the module's variable `name`; throws when there is none.
    virtual void* variable(const std::string& name) const = 0;

    /// The names that the module's file offers to whoever loads it, sorted; none for one without
    /// a file of its own.
    virtual std::vector<std::string> exported() const { return {}; }

    UErrorLogPointer& errorLog() const {
        return *static_cast<UErrorLogPointer*>(variable("errorLog"));
    }
};

/// Loads the module at `path` through the system's loader; destroying it unloads it again.
/// Throws std::runtime_error with the loader's reason.
std::unique_ptr<PluginModule> loadSharedObject(const std::string& path);
