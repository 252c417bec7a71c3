#include <array>
#include <vector>

#include "compact_frame.h"
#include "compact_unwind.h"

namespace macho {

namespace {

constexpr std::uint32_t kFramePointerMode = 1;
constexpr std::uint32_t kStackMode = 2;
constexpr std::uint32_t kLargeStackMode = 3;

// DWARF's numbers of registers.
constexpr unsigned kFramePointer = 6;
constexpr unsigned kStackPointer = 7;
constexpr unsigned kReturnAddress = 16;

// DWARF's number for a record's: rbx, r12 to r15, rbp, counted from 1.
constexpr std::array<unsigned, 7> kSavedRegister = {0, 3, 12, 13, 14, 15, 6};
constexpr unsigned kSavedCount = 6;

// Up to five registers lie below the frame pointer, three bits each; 0 leaves a slot free.
void describeFramePointer(std::uint32_t encoding, FrameTable& table) {
    table.defineFrame(kFramePointer, 16);
    table.savedAt(kReturnAddress, 1);
    table.savedAt(kFramePointer, 2);
    const std::uint32_t deepest = 2 + (encoding >> 16 & 0xFF);
    for (std::uint32_t i = 0; i < 5; ++i) {
        const std::uint32_t number = encoding >> (3 * i) & 7;
        if (number < kSavedRegister.size() && number != 0)
            table.savedAt(kSavedRegister[number], deepest - i);
    }
}

// Which registers were saved, in order: the record keeps the permutation's number, in a system of
// numbers whose digits choose among the registers that are left.
std::vector<unsigned> savedRegisters(std::uint32_t count, std::uint32_t permutation) {
    std::vector<unsigned> left = {1, 2, 3, 4, 5, 6};
    std::vector<unsigned> saved;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t weight = 1;
        for (std::uint32_t j = i + 1; j < count; ++j) weight *= kSavedCount - j;
        const std::uint32_t digit = permutation / weight;
        permutation %= weight;
        saved.push_back(kSavedRegister[left.at(digit)]);
        left.erase(left.begin() + digit);
    }
    return saved;
}

void describeStack(std::uint32_t encoding, const std::uint8_t* function, FrameTable& table) {
    std::uint64_t bytes = std::uint64_t{encoding >> 16 & 0xFF} * 8;
    if (modeOf(encoding) == kLargeStackMode) {
        // The size stands in the function's own `sub` instruction; pushes come on top.
        bytes = load<std::uint32_t>(function + (encoding >> 16 & 0xFF)) + 8 * (encoding >> 13 & 7);
    }
    table.defineFrame(kStackPointer, bytes);
    table.savedAt(kReturnAddress, 1);
    const std::uint32_t count = encoding >> 10 & 7;
    if (count > kSavedCount) throw ImageError("an unwind record saves too many registers");
    std::uint64_t slot = 1 + count;
    for (const unsigned saved : savedRegisters(count, encoding & 0x3FF))
        table.savedAt(saved, slot--);
}

}  // namespace

void describeFrame(std::uint32_t encoding, const std::uint8_t* function, FrameTable& table) {
    switch (modeOf(encoding)) {
        case kFramePointerMode:
            return describeFramePointer(encoding, table);
        case kStackMode:
        case kLargeStackMode:
            return describeStack(encoding, function, table);
        default:
            throw ImageError("an unwind record has an unknown mode");
    }
}

}  // namespace macho
