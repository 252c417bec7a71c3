#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "cursor.h"

namespace macho {

/// Reads the names that an image exports, with their distance from the image's start. The trie is
/// laid out as <mach-o/loader.h> says of `export_off`.
std::map<std::string, std::uint64_t> readExports(ByteSpan trie);

}  // namespace macho
