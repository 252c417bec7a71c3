#pragma once

#include "npapi/npruntime.h"

/// The class of the object that page script sees: no methods, and one property, `info`, the body of
/// the service's answer to a request of its own, or `false` when there is none. Reading it blocks
/// the browser's main thread until the service answers or closes.
extern NPClass sNPClass;
