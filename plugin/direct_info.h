#pragma once

#include "plugin_instance.h"

/// Fetches the service's INFO answer over a socket of its own, past the browser, and puts its body
/// into the instance's `data`: what one read brought, at most 1000 bytes, from behind the first
/// blank line; nothing when there is none. Blocks until the service answers or closes.
/// @return 1, or 0 when the service could not be reached; `data` is then as it was.
int GetDataFromNevo(nsPluginInstance* record);
