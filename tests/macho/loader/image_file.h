#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cursor.h"

namespace macho {

/// A part of the image that goes to one place in memory.
struct Segment {
    std::string name;
    std::uint64_t address;
    std::uint64_t size;
    std::uint64_t fileOffset;
    std::uint64_t fileSize;
    std::uint32_t protection;  ///< 1 read, 2 write, 4 execute
    std::uint32_t flags;
};

/// A part of a segment with one purpose, which its type or its name tells.
struct Section {
    std::string name;
    std::uint64_t address;
    std::uint64_t size;
    std::uint32_t flags;

    std::uint32_t type() const { return flags & 0xFF; }
};

/// What an image's load commands say, as <mach-o/loader.h> lays them out. Nothing is loaded yet.
class ImageFile {
  public:
    /// Reads the file at `path`; of a universal one, the slice for this processor. Throws
    /// `ImageError` when there is none, or when it is not a bundle that needs libSystem alone.
    explicit ImageFile(const std::string& path);

    std::vector<Segment> segments;
    std::vector<Section> sections;
    std::uint64_t lowest = 0;  ///< address of the first segment
    std::uint64_t span = 0;    ///< bytes from there to the end of the last

    ByteSpan rebases;
    ByteSpan binds;
    ByteSpan weakBinds;
    ByteSpan lazyBinds;
    ByteSpan exportsTrie;

    /// @return the section called `name`, or null.
    const Section* section(const std::string& name) const;

    /// @return the bytes that the file has for `segment`.
    ByteSpan content(const Segment& segment) const;

  private:
    void chooseSlice();
    void readCommand(std::uint32_t command, ByteSpan body);
    void readSegment(Cursor fields);
    void readLinkInfo(Cursor fields);
    ByteSpan part(std::uint64_t offset, std::uint64_t size) const;

    std::vector<std::uint8_t> m_file;
    ByteSpan m_image;
};

}  // namespace macho
