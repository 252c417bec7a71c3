#pragma once

#include "CString.h"
#include "plugin_instance.h"

// Reading the parameters with which a page embeds the plug-in.

/// What one embedding's parameters say, apart from what they store in the instance's record.
struct PageParameters {
    CString password;       ///< never logged, never forwarded
    CString installMethod;  ///< only logged
    CString launchText;     ///< the forwarded parameters, "name=value&" each, as given
    int16 install = 0;      ///< the page may install the service
    int16 lastParam = 0;    ///< the page asks for a launch
};

/// Reads all parameters in order. The first marker that occurs anywhere in a name decides what the
/// parameter is for; a parameter without one is forwarded to the service, unencoded. A later
/// parameter overwrites an earlier one. A missing name or value counts as empty.
void readPageParameters(const tagPluginCreateData& createData, nsPluginInstance* record,
                        PageParameters& parameters);
