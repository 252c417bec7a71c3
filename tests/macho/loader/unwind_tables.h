#pragma once

#include <memory>

#include "frame_table.h"
#include "mapping.h"

namespace macho {

/// Makes exceptions pass through an image's frames. The linker replaces nearly all frame
/// descriptions by compact records, which the unwinder of this system cannot read; they are turned
/// back, and the unwinder is told of them for as long as this object lives.
class UnwindTables {
  public:
    UnwindTables(const ImageFile& file, const Mapping& mapping);
    ~UnwindTables();
    UnwindTables(const UnwindTables&) = delete;
    UnwindTables& operator=(const UnwindTables&) = delete;

    /// How many functions can be unwound.
    std::size_t count() const { return m_count; }

    /// The tables stay when this object goes.
    void leave();

  private:
    std::unique_ptr<FrameTable> m_table;
    std::size_t m_count;
};

}  // namespace macho
