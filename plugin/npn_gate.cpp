#include "npn_gate.h"

#include <type_traits>

NPNetscapeFuncs NPNFuncs = {};

namespace {

constexpr int kPluginMajorVersion = 0;
constexpr int kPluginMinorVersion = 24;

// Calls an entry of the browser's table, or answers for a browser that does not have it.
template <typename Result, typename... Parameters>
Result callBrowser(Result (*entry)(Parameters...), std::type_identity_t<Result> ifMissing,
                   std::type_identity_t<Parameters>... arguments) {
    return entry != nullptr ? entry(arguments...) : ifMissing;
}

template <typename... Parameters>
void callBrowser(void (*entry)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    if (entry != nullptr) entry(arguments...);
}

// An entry that only browsers from a minor version on have.
template <typename Entry>
Entry since(int minorVersion, Entry entry) {
    return browserMinorVersion() >= minorVersion ? entry : nullptr;
}

}  // namespace

void NPN_Version(int* pluginMajor, int* pluginMinor, int* netscapeMajor, int* netscapeMinor) {
    *pluginMajor = kPluginMajorVersion;
    *pluginMinor = kPluginMinorVersion;
    *netscapeMajor = NPNFuncs.version >> 8;
    *netscapeMinor = browserMinorVersion();
}

NPError NPN_GetURLNotify(NPP instance, const char* url, const char* target, void* notifyData) {
    return callBrowser(since(NPVERS_HAS_NOTIFICATION, NPNFuncs.geturlnotify),
                       NPERR_INCOMPATIBLE_VERSION_ERROR, instance, url, target, notifyData);
}

NPError NPN_GetURL(NPP instance, const char* url, const char* target) {
    return callBrowser(NPNFuncs.geturl, NPERR_INCOMPATIBLE_VERSION_ERROR, instance, url, target);
}

NPError NPN_PostURLNotify(NPP instance, const char* url, const char* target, uint32 len,
                          const char* buf, NPBool file, void* notifyData) {
    return callBrowser(since(NPVERS_HAS_NOTIFICATION, NPNFuncs.posturlnotify),
                       NPERR_INCOMPATIBLE_VERSION_ERROR, instance, url, target, len, buf, file,
                       notifyData);
}

NPError NPN_PostURL(NPP instance, const char* url, const char* target, uint32 len, const char* buf,
                    NPBool file) {
    return callBrowser(NPNFuncs.posturl, NPERR_INCOMPATIBLE_VERSION_ERROR, instance, url, target,
                       len, buf, file);
}

NPError NPN_RequestRead(NPStream* stream, NPByteRange* rangeList) {
    return callBrowser(NPNFuncs.requestread, NPERR_INCOMPATIBLE_VERSION_ERROR, stream, rangeList);
}

NPError NPN_NewStream(NPP instance, NPMIMEType type, const char* target, NPStream** stream) {
    return callBrowser(since(NPVERS_HAS_STREAMOUTPUT, NPNFuncs.newstream),
                       NPERR_INCOMPATIBLE_VERSION_ERROR, instance, type, target, stream);
}

int32 NPN_Write(NPP instance, NPStream* stream, int32 len, void* buffer) {
    return callBrowser(since(NPVERS_HAS_STREAMOUTPUT, NPNFuncs.write), -1, instance, stream, len,
                       buffer);
}

NPError NPN_DestroyStream(NPP instance, NPStream* stream, NPReason reason) {
    return callBrowser(since(NPVERS_HAS_STREAMOUTPUT, NPNFuncs.destroystream),
                       NPERR_INCOMPATIBLE_VERSION_ERROR, instance, stream, reason);
}

void NPN_Status(NPP instance, const char* message) {
    callBrowser(NPNFuncs.status, instance, message);
}

const char* NPN_UserAgent(NPP instance) { return callBrowser(NPNFuncs.uagent, nullptr, instance); }

void* NPN_MemAlloc(uint32 size) { return callBrowser(NPNFuncs.memalloc, nullptr, size); }

void NPN_MemFree(void* ptr) { callBrowser(NPNFuncs.memfree, ptr); }

uint32 NPN_MemFlush(uint32 size) { return callBrowser(NPNFuncs.memflush, 0, size); }

void NPN_ReloadPlugins(NPBool reloadPages) { callBrowser(NPNFuncs.reloadplugins, reloadPages); }

NPError NPN_GetValue(NPP instance, NPNVariable variable, void* value) {
    return callBrowser(NPNFuncs.getvalue, NPERR_INCOMPATIBLE_VERSION_ERROR, instance, variable,
                       value);
}

NPError NPN_SetValue(NPP instance, NPPVariable variable, void* value) {
    return callBrowser(NPNFuncs.setvalue, NPERR_INCOMPATIBLE_VERSION_ERROR, instance, variable,
                       value);
}

void NPN_InvalidateRect(NPP instance, NPRect* rect) {
    callBrowser(NPNFuncs.invalidaterect, instance, rect);
}

void NPN_InvalidateRegion(NPP instance, NPRegion region) {
    callBrowser(NPNFuncs.invalidateregion, instance, region);
}

void NPN_ForceRedraw(NPP instance) { callBrowser(NPNFuncs.forceredraw, instance); }

NPObject* NPN_CreateObject(NPP instance, NPClass* objectClass) {
    return callBrowser(NPNFuncs.createobject, nullptr, instance, objectClass);
}

NPObject* NPN_RetainObject(NPObject* object) {
    return callBrowser(NPNFuncs.retainobject, nullptr, object);
}

void NPN_ReleaseObject(NPObject* object) { callBrowser(NPNFuncs.releaseobject, object); }
