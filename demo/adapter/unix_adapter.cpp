// Lets a Unix browser load the macOS plug-in: a Unix browser hands over both function tables in one
// call and asks for the MIME type before it, a macOS browser makes two calls and reads the
// bundle's property list. The module loaded is the one that ships, at its place in the bundle.

#include <dlfcn.h>

#include <cstdio>

#include "npapi/npfunctions.h"

namespace {

constexpr const char* kModule =
    "/Library/Internet Plug-Ins/Zerva SSL VPN Plugin.plugin/Contents/MacOS/nevo_plugin";

void* module() {
    static void* const handle = dlopen(kModule, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        std::fprintf(stderr, "unix adapter: %s\n", dlerror());
    }
    return handle;
}

template <typename Function>
Function* entryPoint(const char* name) {
    return module() == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(module(), name));
}

}  // namespace

#define ZERVA_EXPORT extern "C" __attribute__((visibility("default")))

ZERVA_EXPORT NPError NP_Initialize(NPNetscapeFuncs* browser, NPPluginFuncs* plugin) {
    auto* const initialize = entryPoint<NPError(NPNetscapeFuncs*)>("NP_Initialize");
    auto* const getEntryPoints = entryPoint<NPError(NPPluginFuncs*)>("NP_GetEntryPoints");
    if (initialize == nullptr || getEntryPoints == nullptr) {
        return NPERR_MODULE_LOAD_FAILED_ERROR;
    }
    const NPError error = initialize(browser);
    return error != NPERR_NO_ERROR ? error : getEntryPoints(plugin);
}

ZERVA_EXPORT NPError NP_Shutdown() {
    if (auto* const shutdown = entryPoint<void()>("NP_Shutdown")) {
        shutdown();
    }
    return NPERR_NO_ERROR;
}

ZERVA_EXPORT const char* NP_GetMIMEDescription() {
    return "application/x-zerva-sslvpn:xvpn:Zerva Lanway plugin";
}

ZERVA_EXPORT NPError NP_GetValue(void*, NPPVariable variable, void* value) {
    if (variable != NPPVpluginNameString && variable != NPPVpluginDescriptionString) {
        return NPERR_INVALID_PARAM;
    }
    *static_cast<const char**>(value) = "Zerva Lanway plugin";
    return NPERR_NO_ERROR;
}
