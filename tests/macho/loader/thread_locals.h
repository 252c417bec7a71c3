#pragma once

#include <cstddef>
#include <cstdint>

#include "mapping.h"

namespace macho {

/// The thread-local variables of one image: a block for each thread, made when the thread first
/// asks, a copy of the image's initial values. Their descriptors are laid out as
/// <mach-o/loader.h> says of S_THREAD_LOCAL_VARIABLES.
class ThreadLocals {
  public:
    /// Points the image's descriptors to this object, which must not move.
    ThreadLocals(const ImageFile& file, const Mapping& mapping);
    ~ThreadLocals();
    ThreadLocals(const ThreadLocals&) = delete;
    ThreadLocals& operator=(const ThreadLocals&) = delete;

    /// @return the calling thread's block.
    std::uint8_t* block();

    /// What an image calls to get the address of a variable.
    static void* accessor();

    /// Threads may still come for their variables when this object goes: their key stays.
    void leave() { m_leave = true; }

  private:
    const std::uint8_t* m_initial = nullptr;
    std::size_t m_initialSize = 0;
    std::size_t m_size = 0;
    unsigned m_key = 0;
    bool m_leave = false;
};

}  // namespace macho
