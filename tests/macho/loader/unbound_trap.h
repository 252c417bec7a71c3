#pragma once

#include <string>

namespace macho {

/// Makes a function that says that `name` has no stand-in and ends the process: what an import is
/// bound to that nobody offers. It takes a call to find out whether that matters.
void* makeUnboundTrap(const std::string& name);

}  // namespace macho
