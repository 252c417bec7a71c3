#pragma once

#include <cstddef>

#include "UObject.h"

/// An owned block of bytes and its size, resizable; without a block the pointer is null and the
/// size 0. The block comes from the C library's `malloc`, belongs to this object alone and is freed
/// with it. An object belongs to one thread at a time.
///
/// Lack of memory, and a size that does not fit, is a `UException` with code -1. An operation that
/// gives the old block up has done so by then; `expand` leaves everything as it was.
class AutoMemory : public UObject {
  public:
    /// No block.
    AutoMemory() = default;
    /// `size` zero bytes; none for a size of 0 or less.
    explicit AutoMemory(int size);
    /// A copy of `size` bytes at `data`; zero bytes where that is null.
    AutoMemory(const unsigned char* data, unsigned int size);
    AutoMemory(const AutoMemory& other);
    AutoMemory& operator=(const AutoMemory& other);
    ~AutoMemory() override;

    /// @return the block; null when there is none.
    unsigned char* getPtr() const { return m_buffer; }
    operator unsigned char*() const { return m_buffer; }
    /// @return its size in bytes.
    unsigned int getSize() const { return m_size; }

    /// Flag of `mallocEx`: the new block is filled with zeros.
    static constexpr unsigned int kZeroFilled = 1;

    /// Gives the block up for a new one of `size` zero bytes; for none, if that is 0 or less.
    /// @return the new block, or null.
    unsigned char* malloc(int size) { return mallocEx(size, kZeroFilled); }
    /// As above; without the flag the bytes are not set.
    unsigned char* mallocEx(int size, unsigned int flags);
    /// Makes sure of at least `size` bytes: room, not preservation. A larger block is a new one of
    /// zero bytes, on purpose. @return the block.
    unsigned char* ensure(unsigned int size);
    /// Makes the block longer by `extra` bytes, which are not set, or zero where there was no
    /// block; an `extra` of 0 or less changes nothing. @return the block, which may have moved.
    unsigned char* expand(int extra);
    /// Gives up the bytes behind the first `size`; a block that is no longer stays as it is.
    /// Cannot fail. @return the block, which may have moved; null for a size of 0.
    unsigned char* truncate(unsigned int size);

    /// Writes all bytes to the file `path`, created or cut to nothing first. Whether they arrived
    /// is not looked at. @return 0, also without a block, when the file is left alone; -1 when it
    /// cannot be opened.
    int SaveToFile(const char* path) const;

  private:
    void Release();
    void Allocate(std::size_t size, unsigned int flags);
    void CopyFrom(const unsigned char* data, std::size_t size);

    unsigned char* m_buffer = nullptr;
    unsigned int m_size = 0;
};
