#pragma once

#include <cstdint>
#include <vector>

#include "mapping.h"

namespace macho {

/// What the linker kept of one function's frame: one word, and what an exception needs.
struct CompactRecord {
    std::uint32_t function;  ///< offset from the image's start
    std::uint32_t length;
    std::uint32_t encoding;
    std::uint64_t personality;  ///< address; 0: none
    std::uint64_t handlers;     ///< address; 0: none
};

/// The kind of a record: what its lower bits mean.
inline std::uint32_t modeOf(std::uint32_t encoding) { return encoding >> 24 & 0xF; }

/// Reads the image's __unwind_info section, laid out as <mach-o/compact_unwind_encoding.h> says.
/// Functions without a frame of their own, and with nothing to say, are left out.
std::vector<CompactRecord> readCompactUnwind(const ImageFile& file, const Mapping& mapping);

}  // namespace macho
