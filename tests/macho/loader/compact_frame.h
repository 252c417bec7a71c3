#pragma once

#include <cstdint>

#include "frame_table.h"

namespace macho {

/// The record's mode that says: this function has kept its description in __eh_frame.
#if defined(__aarch64__)
inline constexpr std::uint32_t kDwarfMode = 3;
#else
inline constexpr std::uint32_t kDwarfMode = 4;
#endif

/// Says in the table's words where the frame that `encoding` stands for keeps the caller's
/// registers: the word's meaning is given in <mach-o/compact_unwind_encoding.h>. True wherever a
/// call can stand, which is all an exception needs. `function` is where the function lies.
void describeFrame(std::uint32_t encoding, const std::uint8_t* function, FrameTable& table);

}  // namespace macho
