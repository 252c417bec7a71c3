#pragma once

#include <string>

/// The calls of a Mac's libSystem, for an image that runs inside a Linux process. Where both
/// systems agree on a call, it is this system's own; where a number, a layout or a protocol
/// differs, a stand-in converts.
///
/// It is the C library that the image gets, not the Mac's: what only that would do wrong, or right,
/// does not show here. Locale C alone.
namespace macho::libsystem {

/// @return what stands for an imported name (with its leading underscore); null: nothing does.
void* find(const std::string& name);

}  // namespace macho::libsystem
