#include "mapping.h"

#include <sys/mman.h>
#include <unistd.h>

namespace macho {

namespace {

constexpr std::uint32_t kReadOnlyAfterFixups = 0x10;

}  // namespace

Mapping::Mapping(const ImageFile& file) : m_file(file) {
    void* room =
        mmap(nullptr, file.span, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) throw ImageError("there is no room for the image");
    m_base = static_cast<std::uint8_t*>(room);
    for (const Segment& segment : file.segments) {
        const ByteSpan content = file.content(segment);
        if (!content.empty())
            std::memcpy(at(segment.address, content.size()), content.data(), content.size());
    }
}

Mapping::~Mapping() {
    if (!m_leave) munmap(m_base, m_file.span);
}

std::uint8_t* Mapping::at(std::uint64_t address, std::uint64_t size) const {
    const std::uint64_t offset = address - m_file.lowest;
    if (offset > m_file.span || size > m_file.span - offset)
        throw ImageError("the image points outside of itself");
    return m_base + offset;
}

void Mapping::protect() const {
    const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    for (const Segment& segment : m_file.segments) {
        const bool readOnly = (segment.flags & kReadOnlyAfterFixups) != 0;
        const int protection = readOnly ? PROT_READ : static_cast<int>(segment.protection & 7);
        const std::uint64_t size = (segment.size + page - 1) / page * page;
        if (mprotect(at(segment.address), size, protection) != 0)
            throw ImageError("segment " + segment.name + " cannot be protected");
    }
    __builtin___clear_cache(reinterpret_cast<char*>(begin()), reinterpret_cast<char*>(end()));
}

}  // namespace macho
