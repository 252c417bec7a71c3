#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "image_error.h"

namespace macho {

using ByteSpan = std::span<const std::uint8_t>;

/// Reads a value of any alignment.
template <typename T>
T load(const void* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

/// Writes a value of any alignment.
template <typename T>
void store(void* to, T value) {
    std::memcpy(to, &value, sizeof value);
}

/// Reads one thing after the other. Reading past the end throws `ImageError`.
class Cursor {
  public:
    explicit Cursor(ByteSpan bytes, std::size_t position = 0)
        : m_bytes(bytes), m_position(position) {}

    bool atEnd() const { return m_position >= m_bytes.size(); }
    std::size_t position() const { return m_position; }
    void skip(std::size_t count) { take(count); }
    ByteSpan rest() const { return m_bytes.subspan(std::min(m_position, m_bytes.size())); }

    template <typename T>
    T read() {
        return load<T>(take(sizeof(T)));
    }

    /// A number in groups of seven bits, the lowest first, as DWARF and dyld write it.
    std::uint64_t uleb() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const auto byte = read<std::uint8_t>();
            if (shift < 64) value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
            if (byte < 0x80) return value;
        }
    }

    /// The same with a sign.
    std::int64_t sleb() {
        std::uint64_t value = 0;
        unsigned shift = 0;
        std::uint8_t byte = 0x80;
        while (byte >= 0x80) {
            byte = read<std::uint8_t>();
            if (shift < 64) value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
            shift += 7;
        }
        if (shift < 64 && (byte & 0x40) != 0) value |= ~std::uint64_t{0} << shift;
        return static_cast<std::int64_t>(value);
    }

    /// A text up to its terminator.
    std::string text() {
        const ByteSpan left = rest();
        const auto* start = reinterpret_cast<const char*>(left.data());
        const std::size_t length = strnlen(start, left.size());
        take(length + 1);
        return {start, length};
    }

  private:
    const std::uint8_t* take(std::size_t count) {
        if (m_position > m_bytes.size() || count > m_bytes.size() - m_position)
            throw ImageError("the image is cut short");
        const std::uint8_t* from = m_bytes.data() + m_position;
        m_position += count;
        return from;
    }

    ByteSpan m_bytes;
    std::size_t m_position;
};

}  // namespace macho
