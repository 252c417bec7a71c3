#pragma once

#include "npapi/npfunctions.h"

// The browser's services, one wrapper each. A wrapper hands its arguments on unchanged and returns
// the browser's result. Where the browser is older than the call, or has no such entry, it is not
// called, and the wrapper answers NPERR_INCOMPATIBLE_VERSION_ERROR, -1 for NPN_Write, or null.

/// The plug-in's own copy of the browser's table: zero at load, filled by NP_Initialize.
extern NPNetscapeFuncs NPNFuncs;

/// @return the minor version of the browser's interface.
inline int browserMinorVersion() { return NPNFuncs.version & 0xFF; }

/// Reports the versions of the interface that the plug-in was written for and the browser has.
void NPN_Version(int* pluginMajor, int* pluginMinor, int* netscapeMajor, int* netscapeMinor);

NPError NPN_GetURLNotify(NPP instance, const char* url, const char* target, void* notifyData);
NPError NPN_GetURL(NPP instance, const char* url, const char* target);
NPError NPN_PostURLNotify(NPP instance, const char* url, const char* target, uint32 len,
                          const char* buf, NPBool file, void* notifyData);
NPError NPN_PostURL(NPP instance, const char* url, const char* target, uint32 len, const char* buf,
                    NPBool file);
NPError NPN_RequestRead(NPStream* stream, NPByteRange* rangeList);
NPError NPN_NewStream(NPP instance, NPMIMEType type, const char* target, NPStream** stream);
int32 NPN_Write(NPP instance, NPStream* stream, int32 len, void* buffer);
NPError NPN_DestroyStream(NPP instance, NPStream* stream, NPReason reason);
void NPN_Status(NPP instance, const char* message);
const char* NPN_UserAgent(NPP instance);
void* NPN_MemAlloc(uint32 size);
void NPN_MemFree(void* ptr);
uint32 NPN_MemFlush(uint32 size);
void NPN_ReloadPlugins(NPBool reloadPages);
NPError NPN_GetValue(NPP instance, NPNVariable variable, void* value);
NPError NPN_SetValue(NPP instance, NPPVariable variable, void* value);
void NPN_InvalidateRect(NPP instance, NPRect* rect);
void NPN_InvalidateRegion(NPP instance, NPRegion region);
void NPN_ForceRedraw(NPP instance);
NPObject* NPN_CreateObject(NPP instance, NPClass* objectClass);
NPObject* NPN_RetainObject(NPObject* object);
void NPN_ReleaseObject(NPObject* object);
