#pragma once

#include "CMD5.h"
#include "CString.h"
#include "npapi/npfunctions.h"

// One embedding of the plug-in in a page: its record and its life. Everything here runs on the
// browser's main thread.

/// The record of one embedding. It owns its six strings.
struct nsPluginInstance {
    NPWindow* window;
    NPP npp;
    bool initialized;            ///< a window has been seen and not been taken away again
    CString* data;               ///< what the last stream brought; the next command to the service
    CString* urlBuffer;          ///< the last URL made for the browser
    int doNotTerminate;          ///< 0 once this instance has started the service, else 1
    int probeVpn;                ///< 1 when the page only asks for the service's state
    CMD5 md5{CMD5::zeroFilled};  ///< not used: zero until its destructor runs
    CString* hostRootUrl;
    CString* signature;
    CString* nevoUrl;
    CString* nevoSize;
    NPObject* scriptableObject;
};

/// What the browser says of a new embedding.
struct tagPluginCreateData {
    NPP instance;
    NPMIMEType type;
    uint16 mode;
    int16 argc;
    char** argn;
    char** argv;
    NPSavedData* saved;
};

/// Makes the instance of one embedding from the page's parameters and starts what they ask for: a
/// probe of the service, its launch, or nothing.
/// @return the record, to be given to NS_DestroyPluginInstance; null when it could not be made or
/// the launch failed. Throws std::bad_alloc, nothing leaked, when memory runs out on the way.
nsPluginInstance* NS_NewPluginInstance(tagPluginCreateData* createData);

/// Releases a record, which must not be null; stops the service first if this instance started it.
void NS_DestroyPluginInstance(nsPluginInstance* record);

/// Notes the first window. @return false when either argument is null.
bool PluginInstance_init(nsPluginInstance* record, NPWindow* window);

/// Forgets the window.
void PluginInstance_shut(nsPluginInstance* record);

/// @return whether a window has been noted; false for a null record.
bool PluginInstance_isInitialized(nsPluginInstance* record);

/// @return the browser's user agent, owned by the browser; "" for a null record.
const char* PluginInstance_getVersion(nsPluginInstance* record);

/// Notes the window. @return NPERR_NO_ERROR.
NPError PluginInstance_SetWindow(nsPluginInstance* record, NPWindow* window);

/// Answers variables 1 (name), 2 (description) and 15 (scriptable object, retained for the caller;
/// `*value` stays as it is while there is none).
/// @return NPERR_NO_ERROR, or NPERR_INVALID_PARAM for any other variable.
NPError PluginInstance_GetValue(nsPluginInstance* record, NPPVariable variable, void* value);

/// Changes nothing. @return NPERR_NO_ERROR.
NPError PluginInstance_SetValue(nsPluginInstance* record, NPNVariable variable, void* value);

/// Does nothing: there is nothing to print.
void PluginInstance_Print(nsPluginInstance* record, NPPrint* platformPrint);

/// Part of the module's published state; empty from load to unload.
extern CString g_password;
extern CString g_installationMethod;
