#include "link_map.h"
#include "loader/macho_image.h"
#include "plugin_test.h"
#include "small_values.h"

namespace {

using small_values::FromImage;
using small_values::ToImage;

template <auto... Entries>
void replaceAll(NPPluginFuncs& table) {
    (ToImage<Entries>::replaceIn(table), ...);
}

template <auto... Entries>
void replaceAll(NPNetscapeFuncs& table) {
    (FromImage<Entries>::replaceIn(table), ...);
}

NPError (*g_getEntryPoints)(NPPluginFuncs*) = nullptr;

// As the image answers, with a step in between where arguments are small.
NPError getPreparedEntryPoints(NPPluginFuncs* table) {
    const NPError result = g_getEntryPoints(table);
    if (result == NPERR_NO_ERROR)
        replaceAll<&NPPluginFuncs::newp, &NPPluginFuncs::newstream, &NPPluginFuncs::destroystream,
                   &NPPluginFuncs::urlnotify>(*table);
    return result;
}

// The same for the browser's entries with small results.
void prepareBrowser(NPNetscapeFuncs& table) {
    using Browser = NPNetscapeFuncs;
    replaceAll<&Browser::geturl, &Browser::posturl, &Browser::requestread, &Browser::newstream,
               &Browser::destroystream, &Browser::geturlnotify, &Browser::posturlnotify,
               &Browser::getvalue, &Browser::setvalue>(table);
}

// The module of the macOS bundle: the machine code that ships.
class MachoPlugin final : public PluginModule {
  public:
    MachoPlugin() : m_image(ZERVA_BUNDLE_MODULE) {
        bind(initialize, "NP_Initialize");
        bind(g_getEntryPoints, "NP_GetEntryPoints");
        bind(shutdown, "NP_Shutdown");
        getEntryPoints = getPreparedEntryPoints;
    }

    void* variable(const std::string& name) const override {
        static const LinkMap map(ZERVA_BUNDLE_MAP);
        return m_image.at(map.addressOf(name));
    }

    std::vector<std::string> exported() const override { return m_image.exports(); }

  private:
    template <typename Function>
    void bind(Function& function, const char* name) {
        function = reinterpret_cast<Function>(m_image.symbol(name));
        if (function == nullptr) throw std::runtime_error(std::string(name) + " is not exported");
    }

    macho::MachoImage m_image;
};

}  // namespace

std::unique_ptr<PluginModule> openPluginUnderTest() {
    prepareBrowser(ScriptedBrowser::current().table);
    return std::make_unique<MachoPlugin>();
}
