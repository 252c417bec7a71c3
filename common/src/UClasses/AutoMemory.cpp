#include "AutoMemory.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "URaise.h"

namespace {

[[noreturn]] void raiseNoMemory(std::size_t size) {
    constexpr const char* function = "AutoMemory::malloc";
    constexpr const char* failed = "malloc error (size)";
    const unsigned long long wanted = size;
    try {
        URaise(function, failed, wanted);
    } catch (const std::bad_alloc&) {
        // Not even its texts can be made, but callers wait for this kind of exception.
        throw UException(-1, nullptr, function, SourcePlace::current().line, "EXCEPTION - %s, %llu",
                         failed, wanted);
    }
}

}  // namespace

AutoMemory::AutoMemory(int size) { malloc(size); }

AutoMemory::AutoMemory(const unsigned char* data, unsigned int size) {
    Allocate(size, data == nullptr ? kZeroFilled : 0);
    if (data != nullptr) CopyFrom(data, size);
}

// NOLINTNEXTLINE(bugprone-copy-constructor-init,readability-redundant-member-init): no error copied
AutoMemory::AutoMemory(const AutoMemory& other) : UObject() {
    Allocate(other.m_size, 0);
    CopyFrom(other.m_buffer, other.m_size);
}

AutoMemory& AutoMemory::operator=(const AutoMemory& other) {
    if (this == &other) return *this;
    Release();
    Allocate(other.m_size, 0);
    CopyFrom(other.m_buffer, other.m_size);
    return *this;
}

AutoMemory::~AutoMemory() { Release(); }

unsigned char* AutoMemory::mallocEx(int size, unsigned int flags) {
    Release();
    if (size > 0) Allocate(static_cast<std::size_t>(size), flags);
    return m_buffer;
}

unsigned char* AutoMemory::ensure(unsigned int size) {
    if (m_size < size) {
        Release();
        Allocate(size, kZeroFilled);
    }
    return m_buffer;
}

unsigned char* AutoMemory::expand(int extra) {
    if (m_buffer == nullptr) return malloc(extra);
    if (extra <= 0) return m_buffer;
    const std::size_t size = std::size_t{m_size} + static_cast<std::size_t>(extra);
    void* const block = size <= UINT_MAX ? std::realloc(m_buffer, size) : nullptr;
    if (block == nullptr) raiseNoMemory(size);
    m_buffer = static_cast<unsigned char*>(block);
    m_size = static_cast<unsigned int>(size);
    return m_buffer;
}

unsigned char* AutoMemory::truncate(unsigned int size) {
    if (size == 0) Release();
    if (size >= m_size) return m_buffer;
    // A block that cannot be moved to a smaller one is large enough where it is.
    if (void* const block = std::realloc(m_buffer, size)) {
        m_buffer = static_cast<unsigned char*>(block);
    }
    m_size = size;
    return m_buffer;
}

int AutoMemory::SaveToFile(const char* path) const {
    if (m_buffer == nullptr) return 0;
    FILE* const file = path == nullptr ? nullptr : fopen(path, "wb");
    if (file == nullptr) return -1;
    fwrite(m_buffer, 1, m_size, file);
    fclose(file);
    return 0;
}

void AutoMemory::Release() {
    std::free(m_buffer);
    m_buffer = nullptr;
    m_size = 0;
}

// Requires: no block.
void AutoMemory::Allocate(std::size_t size, unsigned int flags) {
    if (size == 0) return;
    const bool zeroFilled = (flags & kZeroFilled) != 0;
    void* const block = zeroFilled ? std::calloc(size, 1) : std::malloc(size);
    if (block == nullptr) raiseNoMemory(size);
    m_buffer = static_cast<unsigned char*>(block);
    m_size = static_cast<unsigned int>(size);
}

void AutoMemory::CopyFrom(const unsigned char* data, std::size_t size) {
    if (size != 0) memcpy(m_buffer, data, size);
}
