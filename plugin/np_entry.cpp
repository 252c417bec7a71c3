#include "np_entry.h"

#include "entry_guard.h"
#include "npn_gate.h"
#include "npp_gate.h"
#include "plugin_log.h"

namespace {

constexpr uint16 kPluginTableVersion = 11;

// The size of a pointer, not of the table: kept as browsers have always been told.
constexpr uint16 kPluginTableSize = sizeof(void*);

using Browser = NPNetscapeFuncs;

template <auto... Entries>
void copyEntries(const NPNetscapeFuncs& from) {
    ((NPNFuncs.*Entries = from.*Entries), ...);
}

void keepBrowserTable(const NPNetscapeFuncs& table) {
    copyEntries<&Browser::version, &Browser::size, &Browser::geturl, &Browser::posturl,
                &Browser::requestread, &Browser::newstream, &Browser::write,
                &Browser::destroystream, &Browser::status, &Browser::uagent, &Browser::memalloc,
                &Browser::memfree, &Browser::memflush, &Browser::reloadplugins>(table);
    if (browserMinorVersion() >= NPVERS_HAS_NOTIFICATION) {
        copyEntries<&Browser::getJavaEnv, &Browser::getJavaPeer, &Browser::geturlnotify,
                    &Browser::posturlnotify>(table);
    }
    copyEntries<&Browser::getvalue, &Browser::setvalue, &Browser::invalidaterect,
                &Browser::invalidateregion, &Browser::forceredraw, &Browser::createobject,
                &Browser::retainobject, &Browser::releaseobject, &Browser::utf8fromidentifier>(
        table);
}

NPError initialize(const NPNetscapeFuncs* browserFuncs) {
    PluginOpenLog();
    PluginWriteLog(4, "[NP_Initialize] Plugin initialization...\n");
    if (browserFuncs == nullptr) {
        PluginWriteLog(4, "[NP_Initialize] ERROR! Wrong argument NPNetscapeFuncs cannot be NULL\n");
        return NPERR_INVALID_FUNCTABLE_ERROR;
    }
    constexpr int kSmallestTable = sizeof(NPNetscapeFuncs);
    if (browserFuncs->size < kSmallestTable) {
        PluginWriteLog(
            4, "[NP_Initialize] ERROR! size of browserFuncs (%d) < size of NetscapeFuncs (%d)\n",
            browserFuncs->size, kSmallestTable);
        return NPERR_INVALID_FUNCTABLE_ERROR;
    }
    PluginWriteLog(4, "[NP_Initialize] NPNetscapeFuncs version of browser %d\n",
                   browserFuncs->version);
    keepBrowserTable(*browserFuncs);
    return NPERR_NO_ERROR;
}

}  // namespace

NPError NP_Initialize(NPNetscapeFuncs* browserFuncs) {
    return guardEntry("NP_Initialize", NPERR_OUT_OF_MEMORY_ERROR,
                      [=] { return initialize(browserFuncs); });
}

NPError NP_GetEntryPoints(NPPluginFuncs* pluginFuncs) {
    PluginWriteLog(4, "[NP_GetEntryPoints]\n");
    if (pluginFuncs == nullptr) {
        PluginWriteLog(0, "[NP_GetEntryPoints] bad param: pluginFuncs == NULL\n");
        return NPERR_INVALID_FUNCTABLE_ERROR;
    }
    pluginFuncs->version = kPluginTableVersion;
    pluginFuncs->size = kPluginTableSize;
    pluginFuncs->newp = NPP_New;
    pluginFuncs->destroy = NPP_Destroy;
    pluginFuncs->setwindow = NPP_SetWindow;
    pluginFuncs->newstream = NPP_NewStream;
    pluginFuncs->destroystream = NPP_DestroyStream;
    pluginFuncs->asfile = NPP_StreamAsFile;
    pluginFuncs->writeready = NPP_WriteReady;
    pluginFuncs->write = NPP_Write;
    pluginFuncs->print = NPP_Print;
    pluginFuncs->event = NPP_HandleEvent;
    pluginFuncs->urlnotify = NPP_URLNotify;
    pluginFuncs->getvalue = NPP_GetValue;
    pluginFuncs->setvalue = NPP_SetValue;
    return NPERR_NO_ERROR;
}

void NP_Shutdown() {
    PluginWriteLog(4, "[NP_Shutdown]\n");
    PluginCloseLog();
}

NPError NS_PluginInitialize() {
    PluginOpenLog();
    PluginWriteLog(4, "[NS_PluginInitialize]\n");
    return NPERR_NO_ERROR;
}

void NS_PluginShutdown() {
    PluginWriteLog(4, "[NS_PluginShutdown]\n");
    PluginCloseLog();
}
