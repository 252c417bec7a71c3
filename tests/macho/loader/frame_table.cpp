#include "frame_table.h"

#include <string_view>

namespace macho {

namespace {

// The column of the return address.
#if defined(__aarch64__)
constexpr unsigned kReturnColumn = 30;
#else
constexpr unsigned kReturnColumn = 16;
#endif

constexpr unsigned kDefineFrame = 0x0C;   // DW_CFA_def_cfa
constexpr unsigned kOffset = 0x80;        // DW_CFA_offset, the register in its lower six bits
constexpr unsigned kOffsetLong = 0x05;    // DW_CFA_offset_extended
constexpr unsigned kAbsolutePointer = 0;  // DW_EH_PE_absptr
constexpr unsigned kHandlersSize = 8;

}  // namespace

void FrameTable::uleb(std::uint64_t number) {
    for (; number > 0x7F; number >>= 7) byte(static_cast<unsigned>(number & 0x7F) | 0x80);
    byte(static_cast<unsigned>(number));
}

std::size_t FrameTable::open() {
    const std::size_t start = m_bytes.size();
    value(std::uint32_t{0});
    return start;
}

void FrameTable::close(std::size_t start) {
    while (m_bytes.size() % 8 != 0) byte(0);  // DW_CFA_nop
    store(&m_bytes[start],
          static_cast<std::uint32_t>(m_bytes.size() - start - sizeof(std::uint32_t)));
}

// What several descriptions may have in common; here each brings its own.
std::size_t FrameTable::addCommon(std::uint64_t personality, const Factors& factors,
                                  ByteSpan shared) {
    const std::string_view augmentation = personality != 0 ? "zPLR" : "zLR";
    const std::size_t start = open();
    value(std::uint32_t{0});
    byte(1);  // version
    for (const char letter : augmentation) byte(static_cast<unsigned char>(letter));
    byte(0);
    uleb(factors.code);
    byte(factors.data);
    byte(kReturnColumn);
    uleb(personality != 0 ? 3 + sizeof personality : 2);
    if (personality != 0) {
        byte(kAbsolutePointer);
        value(personality);
    }
    byte(kAbsolutePointer);  // the handlers' table
    byte(kAbsolutePointer);  // the function
    copy(shared);
    close(start);
    return start;
}

void FrameTable::begin(const FrameHead& head, const Factors& factors, ByteSpan shared) {
    const std::size_t common = addCommon(head.personality, factors, shared);
    m_entry = open();
    value(static_cast<std::uint32_t>(m_bytes.size() - common));
    value(head.start);
    value(head.length);
    uleb(kHandlersSize);
    value(head.handlers);
}

void FrameTable::copy(ByteSpan instructions) {
    m_bytes.insert(m_bytes.end(), instructions.begin(), instructions.end());
}

void FrameTable::defineFrame(unsigned registerNumber, std::uint64_t offset) {
    byte(kDefineFrame);
    uleb(registerNumber);
    uleb(offset);
}

void FrameTable::savedAt(unsigned registerNumber, std::uint64_t slots) {
    if (registerNumber < 64) {
        byte(kOffset | registerNumber);
    } else {
        byte(kOffsetLong);
        uleb(registerNumber);
    }
    uleb(slots);
}

void FrameTable::end() { close(m_entry); }

void FrameTable::finish() { value(std::uint32_t{0}); }

}  // namespace macho
