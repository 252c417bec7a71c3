#pragma once

#include "npapi/npfunctions.h"

// What the browser finds in the module: the only exported symbols.

extern "C" {

/// Takes over the browser's services and opens the log.
/// @return NPERR_NO_ERROR, or NPERR_INVALID_FUNCTABLE_ERROR for a null or too small table.
__attribute__((visibility("default"))) NPError NP_Initialize(NPNetscapeFuncs* browserFuncs);

/// Fills the browser's table with the plug-in's entry points.
/// @return NPERR_NO_ERROR, or NPERR_INVALID_FUNCTABLE_ERROR for a null table.
__attribute__((visibility("default"))) NPError NP_GetEntryPoints(NPPluginFuncs* pluginFuncs);

/// Closes the log.
__attribute__((visibility("default"))) void NP_Shutdown();
}

/// Module hooks for hosts that build the plug-in in: open and close the log, nothing else.
NPError NS_PluginInitialize();
void NS_PluginShutdown();
