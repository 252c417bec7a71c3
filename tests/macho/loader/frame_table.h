#pragma once

#include <cstdint>
#include <vector>

#include "cursor.h"

namespace macho {

/// What a function's frame description begins with.
struct FrameHead {
    std::uint64_t start = 0;        ///< address of the function
    std::uint64_t length = 0;       ///< its size
    std::uint64_t personality = 0;  ///< who decides what is caught here; 0: nobody
    std::uint64_t handlers = 0;     ///< the table that the personality reads; 0: none
};

/// Writes a table of frame descriptions in the form of .eh_frame (DWARF 5, section 6.4; the
/// augmentations as the Linux Standard Base describes them) with absolute addresses.
class FrameTable {
  public:
    /// How the instructions of one description count.
    struct Factors {
        std::uint64_t code = 1;
        std::uint8_t data = 0x78;  ///< -8, one byte of a signed LEB128
    };

    /// Begins the description of a function. `shared` are instructions that come before its own.
    void begin(const FrameHead& head, const Factors& factors, ByteSpan shared = {});

    /// Adds instructions as they are.
    void copy(ByteSpan instructions);

    /// The frame's address is a register's value plus an offset.
    void defineFrame(unsigned registerNumber, std::uint64_t offset);

    /// A register of the caller's is kept `slots` words below the frame's address.
    void savedAt(unsigned registerNumber, std::uint64_t slots);

    /// Ends the description.
    void end();

    /// Ends the table. Nothing may be added afterwards.
    void finish();

    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

  private:
    void byte(unsigned value) { m_bytes.push_back(static_cast<std::uint8_t>(value)); }
    void uleb(std::uint64_t value);
    template <typename T>
    void value(T what) {
        const auto* from = reinterpret_cast<const std::uint8_t*>(&what);
        m_bytes.insert(m_bytes.end(), from, from + sizeof what);
    }
    std::size_t open();
    void close(std::size_t start);
    std::size_t addCommon(std::uint64_t personality, const Factors& factors, ByteSpan shared);

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_entry = 0;
};

}  // namespace macho
