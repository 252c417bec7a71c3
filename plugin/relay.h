#pragma once

#include "plugin_instance.h"

// The conversation between page and service, one step per completed browser request.
//
// The browser streams an answer into the instance's `data`. When a request of the service's
// completes, its answer goes to the page as the argument of `c_addcomm`; when that call completes,
// the page's result goes to the service as the next request. The page hears "ssldrop" when the
// service is gone. All callbacks run on the browser's main thread.

/// A stream begins: `data` is emptied for the answer. @return NPERR_NO_ERROR.
NPError PluginInstance_NewStream(nsPluginInstance* record, NPMIMEType mimeType, NPStream* stream,
                                 NPBool seekable, uint16* stype);

/// @return 64000, the bytes that the next block may have.
int32 PluginInstance_WriteReady(nsPluginInstance* record, NPStream* stream);

/// Appends a block to `data` in arrival order, whatever its `offset`; a null buffer or a negative
/// length appends nothing. Throws std::bad_alloc or std::length_error when `data` cannot grow.
/// @return `len`.
int32 PluginInstance_Write(nsPluginInstance* record, NPStream* stream, int32 offset, int32 len,
                           void* buffer);

/// A stream has ended; nothing is sent from here.
/// @return 1 for a network error, else NPERR_NO_ERROR.
NPError PluginInstance_DestroyStream(nsPluginInstance* record, NPStream* stream, NPReason reason);

/// Does nothing: streams are never asked for as files.
void PluginInstance_StreamAsFile(nsPluginInstance* record, NPStream* stream, const char* fname);

/// A request has completed: decides and sends the next one. The record may be gone afterwards.
void PluginInstance_URLNotify(nsPluginInstance* record, const char* url, NPReason reason,
                              void* notifyData);
