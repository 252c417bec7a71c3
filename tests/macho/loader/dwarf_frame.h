#pragma once

#include "compact_unwind.h"
#include "frame_table.h"

namespace macho {

/// Copies the description that a function has kept in the image's __eh_frame section into `table`,
/// where its addresses stand absolute. The record's encoding says where it is.
void copyDwarfFrame(const CompactRecord& record, const ImageFile& file, const Mapping& mapping,
                    FrameTable& table);

}  // namespace macho
