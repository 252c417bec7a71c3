#pragma once

#include <cstdint>

#include "image_file.h"

namespace macho {

/// An image's segments in memory, as far apart as the file says but wherever there is room.
/// Unmaps them at the end of its life, unless told to leave them.
class Mapping {
  public:
    explicit Mapping(const ImageFile& file);
    ~Mapping();
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    std::uint8_t* begin() const { return m_base; }
    std::uint8_t* end() const { return m_base + m_file.span; }

    /// Where the image's `address` came to lie; `size` bytes from there belong to the image.
    std::uint8_t* at(std::uint64_t address, std::uint64_t size = 1) const;

    /// Gives each segment its protection; until then all can be written.
    void protect() const;

    /// The segments stay when this object goes.
    void leave() { m_leave = true; }

  private:
    const ImageFile& m_file;
    std::uint8_t* m_base;
    bool m_leave = false;
};

}  // namespace macho
