#pragma once

/// A block of an allocator that hands out many small elements: a pointer to the next block, and
/// behind it the storage. Blocks form a chain that is freed as a whole; locking is the caller's.
struct CPlex {
    CPlex* pNext;

    /// @return the storage, aligned for pointers and uninitialised.
    void* data() { return this + 1; }

    /// Allocates a block for `count` elements and links it in front of `head`. Lack of memory
    /// raises `std::bad_alloc` and leaves `head` as it is.
    /// @return the block, which is now `head`.
    static CPlex* Create(CPlex*& head, unsigned int count, unsigned int elementSize);

    /// Frees this block and every block after it.
    void FreeDataChain();
};
