#include "work_counters.h"

#include <cstdlib>
#include <new>

WorkCounters workCounters;

void* operator new(size_t size) {
    ++workCounters.allocations;
    if (void* memory = malloc(size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { free(memory); }
void operator delete(void* memory, size_t /*size*/) noexcept { free(memory); }

// The linker leads calls of memcpy and memmove here (--wrap) and the originals to __real_.
extern "C" {
void* __real_memcpy(void* to, const void* from, size_t size);
void* __real_memmove(void* to, const void* from, size_t size);

void* __wrap_memcpy(void* to, const void* from, size_t size) {
    workCounters.bytesCopied += size;
    return __real_memcpy(to, from, size);
}

void* __wrap_memmove(void* to, const void* from, size_t size) {
    workCounters.bytesCopied += size;
    return __real_memmove(to, from, size);
}
}
