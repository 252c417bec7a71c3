#include "plugin_module.h"

#include <dlfcn.h>
#include <link.h>

#include <stdexcept>

#include "elf_symbols.h"

namespace {

class SharedObject final : public PluginModule {
  public:
    explicit SharedObject(const std::string& path) : m_symbols(path) {
        m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (m_handle == nullptr) throw std::runtime_error(dlerror());
        bind(initialize, "NP_Initialize");
        bind(getEntryPoints, "NP_GetEntryPoints");
        bind(shutdown, "NP_Shutdown");
    }
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;
    ~SharedObject() override { dlclose(m_handle); }

    void* variable(const std::string& name) const override {
        const auto* object = static_cast<const link_map*>(m_handle);
        return reinterpret_cast<void*>(object->l_addr + m_symbols.offsetOf(name));
    }

    std::vector<std::string> exported() const override { return m_symbols.exported(); }

  private:
    template <typename Function>
    void bind(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(m_handle, name));
        if (function == nullptr) throw std::runtime_error(dlerror());
    }

    ElfSymbols m_symbols;
    void* m_handle = nullptr;
};

}  // namespace

std::unique_ptr<PluginModule> loadSharedObject(const std::string& path) {
    return std::make_unique<SharedObject>(path);
}
