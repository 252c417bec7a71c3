#include "compact_frame.h"
#include "compact_unwind.h"

namespace macho {

namespace {

constexpr std::uint32_t kFramelessMode = 2;
constexpr std::uint32_t kFrameMode = 4;

// DWARF's numbers of registers.
constexpr unsigned kFramePointer = 29;
constexpr unsigned kReturnAddress = 30;
constexpr unsigned kStackPointer = 31;
constexpr unsigned kFirstGeneral = 19;
constexpr unsigned kFirstVector = 72;  // d8

constexpr unsigned kGeneralPairs = 5;  // x19 to x28, bits 0 to 4
constexpr unsigned kVectorPairs = 4;   // d8 to d15, bits 8 to 11

// The pairs that a record's bits name lie one below the other.
std::uint64_t describePairs(std::uint32_t bits, unsigned count, unsigned first, std::uint64_t slot,
                            FrameTable& table) {
    for (unsigned pair = 0; pair < count; ++pair) {
        if ((bits >> pair & 1) == 0) continue;
        table.savedAt(first + 2 * pair, slot++);
        table.savedAt(first + 2 * pair + 1, slot++);
    }
    return slot;
}

}  // namespace

void describeFrame(std::uint32_t encoding, const std::uint8_t* /*function*/, FrameTable& table) {
    std::uint64_t slot = 1;
    switch (modeOf(encoding)) {
        case kFrameMode:  // frame pointer and return address lie on top
            table.defineFrame(kFramePointer, 16);
            table.savedAt(kReturnAddress, 1);
            table.savedAt(kFramePointer, 2);
            slot = 3;
            break;
        case kFramelessMode:  // the return address stays in its register
            table.defineFrame(kStackPointer, std::uint64_t{encoding >> 12 & 0xFFF} * 16);
            break;
        default:
            throw ImageError("an unwind record has an unknown mode");
    }
    slot = describePairs(encoding, kGeneralPairs, kFirstGeneral, slot, table);
    describePairs(encoding >> 8, kVectorPairs, kFirstVector, slot, table);
}

}  // namespace macho
