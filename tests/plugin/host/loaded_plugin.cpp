#include "plugin_test.h"

std::unique_ptr<PluginModule> openPluginUnderTest() {
    return loadSharedObject(ZERVA_PLUGIN_MODULE);
}
