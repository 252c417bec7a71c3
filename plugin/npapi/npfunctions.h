#pragma once

#include "npapi/npruntime.h"

// NPAPI's two function tables as published. A newer browser's table may go on behind the entries
// declared here; its `size` says how far.

/// What the browser offers to the plug-in.
struct NPNetscapeFuncs {
    uint16 size;     ///< of the browser's table, in bytes
    uint16 version;  ///< major in the high byte, minor in the low byte
    NPError (*geturl)(NPP instance, const char* url, const char* target);
    NPError (*posturl)(NPP instance, const char* url, const char* target, uint32 len,
                       const char* buf, NPBool file);
    NPError (*requestread)(NPStream* stream, NPByteRange* rangeList);
    NPError (*newstream)(NPP instance, NPMIMEType type, const char* target, NPStream** stream);
    int32 (*write)(NPP instance, NPStream* stream, int32 len, void* buffer);
    NPError (*destroystream)(NPP instance, NPStream* stream, NPReason reason);
    void (*status)(NPP instance, const char* message);
    const char* (*uagent)(NPP instance);
    void* (*memalloc)(uint32 size);
    void (*memfree)(void* ptr);
    uint32 (*memflush)(uint32 size);
    void (*reloadplugins)(NPBool reloadPages);
    void* (*getJavaEnv)();
    void* (*getJavaPeer)(NPP instance);
    NPError (*geturlnotify)(NPP instance, const char* url, const char* target, void* notifyData);
    NPError (*posturlnotify)(NPP instance, const char* url, const char* target, uint32 len,
                             const char* buf, NPBool file, void* notifyData);
    NPError (*getvalue)(NPP instance, NPNVariable variable, void* value);
    NPError (*setvalue)(NPP instance, NPPVariable variable, void* value);
    void (*invalidaterect)(NPP instance, NPRect* rect);
    void (*invalidateregion)(NPP instance, NPRegion region);
    void (*forceredraw)(NPP instance);
    NPIdentifier (*getstringidentifier)(const NPUTF8* name);
    void (*getstringidentifiers)(const NPUTF8** names, int32 count, NPIdentifier* identifiers);
    NPIdentifier (*getintidentifier)(int32 id);
    bool (*identifierisstring)(NPIdentifier identifier);
    NPUTF8* (*utf8fromidentifier)(NPIdentifier identifier);
    int32 (*intfromidentifier)(NPIdentifier identifier);
    NPObject* (*createobject)(NPP instance, NPClass* objectClass);
    NPObject* (*retainobject)(NPObject* object);
    void (*releaseobject)(NPObject* object);
    bool (*invoke)(NPP instance, NPObject* object, NPIdentifier method, const NPVariant* args,
                   uint32 argCount, NPVariant* result);
    bool (*invokeDefault)(NPP instance, NPObject* object, const NPVariant* args, uint32 argCount,
                          NPVariant* result);
    bool (*evaluate)(NPP instance, NPObject* object, NPString* script, NPVariant* result);
    bool (*getproperty)(NPP instance, NPObject* object, NPIdentifier property, NPVariant* result);
    bool (*setproperty)(NPP instance, NPObject* object, NPIdentifier property,
                        const NPVariant* value);
    bool (*removeproperty)(NPP instance, NPObject* object, NPIdentifier property);
    bool (*hasproperty)(NPP instance, NPObject* object, NPIdentifier property);
    bool (*hasmethod)(NPP instance, NPObject* object, NPIdentifier method);
    void (*releasevariantvalue)(NPVariant* value);
    void (*setexception)(NPObject* object, const NPUTF8* message);
};

// The smallest table that a browser may hand over; 64-bit systems only.
static_assert(sizeof(NPNetscapeFuncs) == 328);

/// What the plug-in offers to the browser.
struct NPPluginFuncs {
    uint16 size;
    uint16 version;
    NPError (*newp)(NPMIMEType type, NPP instance, uint16 mode, int16 argc, char* argn[],
                    char* argv[], NPSavedData* saved);
    NPError (*destroy)(NPP instance, NPSavedData** save);
    NPError (*setwindow)(NPP instance, NPWindow* window);
    NPError (*newstream)(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable,
                         uint16* stype);
    NPError (*destroystream)(NPP instance, NPStream* stream, NPReason reason);
    void (*asfile)(NPP instance, NPStream* stream, const char* fname);
    int32 (*writeready)(NPP instance, NPStream* stream);
    int32 (*write)(NPP instance, NPStream* stream, int32 offset, int32 len, void* buffer);
    void (*print)(NPP instance, NPPrint* platformPrint);
    int16 (*event)(NPP instance, void* event);
    void (*urlnotify)(NPP instance, const char* url, NPReason reason, void* notifyData);
    void* javaClass;
    NPError (*getvalue)(NPP instance, NPPVariable variable, void* value);
    NPError (*setvalue)(NPP instance, NPNVariable variable, void* value);
    NPBool (*gotfocus)(NPP instance, int direction);
    void (*lostfocus)(NPP instance);
    void (*urlredirectnotify)(NPP instance, const char* url, int32 status, void* notifyData);
    NPError (*clearsitedata)(const char* site, std::uint64_t flags, std::uint64_t maxAge);
    char** (*getsiteswithdata)();
    void (*didComposite)(NPP instance);
};
