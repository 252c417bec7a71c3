#include <stdexcept>

#include "np_entry.h"
#include "npn_gate.h"
#include "plugin_test.h"

namespace {

// The plug-in's object files, linked into the test program: for tests of its inner functions.
class LinkedPlugin final : public PluginModule {
  public:
    LinkedPlugin() {
        initialize = NP_Initialize;
        getEntryPoints = NP_GetEntryPoints;
        shutdown = NP_Shutdown;
        NPNFuncs = {};
    }

    void* variable(const std::string& name) const override {
        if (name == "errorLog") return &::errorLog;
        if (name == "NPNFuncs") return &NPNFuncs;
        throw std::runtime_error("the linked plug-in does not offer '" + name + "'");
    }
};

}  // namespace

std::unique_ptr<PluginModule> openPluginUnderTest() { return std::make_unique<LinkedPlugin>(); }
