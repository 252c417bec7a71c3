#pragma once

#include <functional>
#include <string>

#include "mapping.h"

namespace macho {

/// Finds the address for an imported name. `isOptional`: the image can do without; null is fine.
using Resolver = std::function<void*(const std::string& name, bool isOptional)>;

/// Adds to the image's inner pointers how far it came to lie from where it was linked to.
void applyRebases(const ImageFile& file, const Mapping& mapping);

/// Fills in the addresses of what the image imports, lazily bound calls included: all at once.
void applyBinds(const ImageFile& file, const Mapping& mapping, const Resolver& resolve);

}  // namespace macho
