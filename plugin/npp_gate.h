#pragma once

#include "npapi/npfunctions.h"

// The entry points that the browser calls, all on its main thread. Each checks its handle and
// forwards to the instance: a null handle answers NPERR_INVALID_INSTANCE_ERROR, a handle without a
// record NPERR_GENERIC_ERROR, and the stream calls as if everything had been taken. No exception
// leaves them; a call that fails for lack of memory answers as if there were no record.

/// Makes the instance of one embedding and starts what the page's parameters ask for.
/// @return NPERR_NO_ERROR, or NPERR_OUT_OF_MEMORY_ERROR whatever the reason of the failure was.
NPError NPP_New(NPMIMEType type, NPP instance, uint16 mode, int16 argc, char* argn[], char* argv[],
                NPSavedData* saved);

/// Releases the instance and stops the service if this instance started it.
NPError NPP_Destroy(NPP instance, NPSavedData** save);

/// Notes the window; the plug-in draws nothing into it.
NPError NPP_SetWindow(NPP instance, NPWindow* window);

NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable,
                      uint16* stype);

/// @return how many bytes the next NPP_Write may bring.
int32 NPP_WriteReady(NPP instance, NPStream* stream);

/// @return `len`: everything is taken.
int32 NPP_Write(NPP instance, NPStream* stream, int32 offset, int32 len, void* buffer);

NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason);
void NPP_StreamAsFile(NPP instance, NPStream* stream, const char* fname);
void NPP_Print(NPP instance, NPPrint* platformPrint);
void NPP_URLNotify(NPP instance, const char* url, NPReason reason, void* notifyData);

/// Answers the plug-in's name, its description and its scriptable object.
NPError NPP_GetValue(NPP instance, NPPVariable variable, void* value);

NPError NPP_SetValue(NPP instance, NPNVariable variable, void* value);

/// @return 0: no event is ever handled.
int16 NPP_HandleEvent(NPP instance, void* event);
