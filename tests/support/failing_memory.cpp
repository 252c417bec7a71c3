#include "failing_memory.h"

#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = 0;  // 0: none is to fail
thread_local bool allThatFollow = false;
thread_local bool failed = false;

bool isToFail() {
    if (allocationsLeft == 0 || --allocationsLeft > 0) return false;
    if (allThatFollow) allocationsLeft = 1;
    failed = true;
    errno = ENOMEM;
    return true;
}

}  // namespace

FailingAllocation::FailingAllocation(int n, Failures failures) {
    failed = false;
    allThatFollow = failures == fromThenOn;
    allocationsLeft = n;
}

FailingAllocation::~FailingAllocation() { allocationsLeft = 0; }

bool FailingAllocation::happened() const { return failed; }

// The linker sends every call of NAME to __wrap_NAME, and __real_NAME to the C library.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) { return isToFail() ? nullptr : __real_malloc(size); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return isToFail() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size) {
    return isToFail() ? nullptr : __real_realloc(block, size);
}
}

// Exceptions themselves are allocated by the runtime, past all this.
void* operator new(std::size_t size) {
    if (void* const block = __wrap_malloc(size)) return block;
    throw std::bad_alloc();
}

void* operator new[](std::size_t size) { return operator new(size); }

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return __wrap_malloc(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}

void operator delete(void* block) noexcept { std::free(block); }

void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }

void operator delete[](void* block) noexcept { std::free(block); }

void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

// For an object whose constructor raises.
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { std::free(block); }
