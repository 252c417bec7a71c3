#include "thread_locals.h"

#include <pthread.h>

#include <cstdlib>

// The image passes a descriptor of three words: accessor, owner, offset into the block.
extern "C" void* machoThreadLocalAddress(const std::uint64_t* descriptor) {
    auto* owner = reinterpret_cast<macho::ThreadLocals*>(descriptor[1]);
    return owner->block() + descriptor[2];
}

// In thread_local_accessor_*.S: keeps every register but the result's and calls the above.
extern "C" void machoThreadLocalAccessor();

namespace macho {

namespace {

constexpr std::uint32_t kInitialValues = 0x11;
constexpr std::uint32_t kZeroes = 0x12;
constexpr std::uint32_t kDescriptors = 0x13;
constexpr std::uint64_t kDescriptorSize = 24;

constexpr std::size_t kBlockAlignment = 64;

}  // namespace

ThreadLocals::ThreadLocals(const ImageFile& file, const Mapping& mapping) {
    static_assert(sizeof(pthread_key_t) == sizeof m_key);
    pthread_key_create(&m_key, std::free);
    // The linker puts the initial values and then the zeroes side by side, one block's content.
    std::uint64_t start = 0;
    for (const Section& section : file.sections) {
        if (section.type() != kInitialValues && section.type() != kZeroes) continue;
        if (m_size == 0) start = section.address;
        m_size = section.address + section.size - start;
        if (section.type() == kInitialValues) m_initialSize = m_size;
    }
    if (m_size != 0) m_initial = mapping.at(start, m_size);
    for (const Section& section : file.sections) {
        if (section.type() != kDescriptors) continue;
        for (std::uint64_t offset = 0; offset < section.size; offset += kDescriptorSize) {
            std::uint8_t* descriptor = mapping.at(section.address + offset, kDescriptorSize);
            store(descriptor, accessor());
            store(descriptor + 8, this);
        }
    }
}

ThreadLocals::~ThreadLocals() {
    if (m_leave) return;
    std::free(pthread_getspecific(m_key));
    pthread_key_delete(m_key);
}

std::uint8_t* ThreadLocals::block() {
    if (void* known = pthread_getspecific(m_key)) return static_cast<std::uint8_t*>(known);
    const std::size_t room = (m_size + kBlockAlignment - 1) / kBlockAlignment * kBlockAlignment;
    auto* fresh = static_cast<std::uint8_t*>(std::aligned_alloc(kBlockAlignment, room));
    if (fresh == nullptr) std::abort();
    std::memset(fresh, 0, room);
    std::memcpy(fresh, m_initial, m_initialSize);
    pthread_setspecific(m_key, fresh);
    return fresh;
}

void* ThreadLocals::accessor() { return reinterpret_cast<void*>(&machoThreadLocalAccessor); }

}  // namespace macho
