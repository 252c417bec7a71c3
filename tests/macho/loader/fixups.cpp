#include "fixups.h"

#include <cstdint>

// Both tables are little programs for a machine with a few registers: <mach-o/loader.h>,
// REBASE_OPCODE_* and BIND_OPCODE_*. An opcode stands in the upper half of a byte, a small operand
// in the lower.

namespace macho {

namespace {

constexpr std::uint64_t kPointer = 8;

// What a pointer carries beside the address: on ARM, the mark of a C++ type's name that is not the
// only one (Itanium C++ ABI, the vendor's part).
constexpr std::uint64_t kTag = 0xFF00'0000'0000'0000;

enum RebaseOpcode : std::uint8_t {
    kRebaseDone = 0x00,
    kRebaseSetType = 0x10,
    kRebaseSetSegmentAndOffset = 0x20,
    kRebaseAddAddress = 0x30,
    kRebaseAddAddressScaled = 0x40,
    kRebaseTimes = 0x50,
    kRebaseTimesLong = 0x60,
    kRebaseAndAddAddress = 0x70,
    kRebaseTimesSkipping = 0x80
};

enum BindOpcode : std::uint8_t {
    kBindDone = 0x00,
    kBindSetLibrary = 0x10,
    kBindSetLibraryLong = 0x20,
    kBindSetLibrarySpecial = 0x30,
    kBindSetSymbol = 0x40,
    kBindSetType = 0x50,
    kBindSetAddend = 0x60,
    kBindSetSegmentAndOffset = 0x70,
    kBindAddAddress = 0x80,
    kBind = 0x90,
    kBindAndAddAddress = 0xA0,
    kBindAndAddAddressScaled = 0xB0,
    kBindTimesSkipping = 0xC0
};

constexpr std::uint8_t kOptionalImport = 1;

// The address register of both machines.
class Position {
  public:
    Position(const ImageFile& file, const Mapping& mapping) : m_file(file), m_mapping(mapping) {}

    void set(std::size_t segment, std::uint64_t offset) {
        if (segment >= m_file.segments.size()) throw ImageError("a fixup names no segment");
        m_address = m_file.segments[segment].address + offset;
    }
    void advance(std::uint64_t bytes) { m_address += bytes; }
    std::uint8_t* pointer() const { return m_mapping.at(m_address, kPointer); }

  private:
    const ImageFile& m_file;
    const Mapping& m_mapping;
    std::uint64_t m_address = 0;
};

void rebase(const Mapping& mapping, Position& position, std::uint64_t times, std::uint64_t skip) {
    for (; times > 0; --times) {
        std::uint8_t* pointer = position.pointer();
        const auto target = load<std::uint64_t>(pointer);
        const auto place = reinterpret_cast<std::uintptr_t>(mapping.at(target & ~kTag, 0));
        store(pointer, place | (target & kTag));
        position.advance(kPointer + skip);
    }
}

enum class Binding { atLoad, lazy };

// The machine that binds: its registers, and a step for each opcode.
class Binder {
  public:
    Binder(ByteSpan program, Position start, const Resolver& resolve)
        : m_code(program), m_position(start), m_resolve(resolve) {}

    void run(Binding kind) {
        while (!m_code.atEnd()) {
            const auto byte = m_code.read<std::uint8_t>();
            const std::uint8_t opcode = byte & 0xF0;
            if (opcode == kBindDone && kind == Binding::atLoad) return;
            if (!setRegister(opcode, byte & 0x0F)) bind(opcode, byte & 0x0F);
        }
    }

  private:
    // Carries out an opcode that only prepares; false when it is none of these.
    bool setRegister(std::uint8_t opcode, std::uint8_t operand) {
        switch (opcode) {
            case kBindDone:  // also stands between lazy entries
            case kBindSetLibrary:
            case kBindSetLibrarySpecial:
            case kBindSetType:
                return true;
            case kBindSetLibraryLong:
                m_code.uleb();
                return true;
            case kBindSetSymbol:
                m_name = m_code.text();
                m_isOptional = (operand & kOptionalImport) != 0;
                return true;
            case kBindSetAddend:
                m_addend = static_cast<std::uint64_t>(m_code.sleb());
                return true;
            case kBindSetSegmentAndOffset:
                m_position.set(operand, m_code.uleb());
                return true;
            case kBindAddAddress:
                m_position.advance(m_code.uleb());
                return true;
            default:
                return false;
        }
    }

    void bind(std::uint8_t opcode, std::uint8_t operand) {
        switch (opcode) {
            case kBind:
                return fill(1, 0);
            case kBindAndAddAddress:
                return fill(1, m_code.uleb());
            case kBindAndAddAddressScaled:
                return fill(1, operand * kPointer);
            case kBindTimesSkipping: {
                const std::uint64_t times = m_code.uleb();
                return fill(times, m_code.uleb());
            }
            default:
                throw ImageError("a bind opcode is unknown");
        }
    }

    void fill(std::uint64_t times, std::uint64_t skip) {
        const auto target = reinterpret_cast<std::uintptr_t>(m_resolve(m_name, m_isOptional));
        for (; times > 0; --times) {
            store(m_position.pointer(), target + m_addend);
            m_position.advance(kPointer + skip);
        }
    }

    Cursor m_code;
    Position m_position;
    const Resolver& m_resolve;
    std::string m_name;
    bool m_isOptional = false;
    std::uint64_t m_addend = 0;
};

}  // namespace

void applyRebases(const ImageFile& file, const Mapping& mapping) {
    Position position(file, mapping);
    for (Cursor code(file.rebases); !code.atEnd();) {
        const auto byte = code.read<std::uint8_t>();
        const std::uint8_t operand = byte & 0x0F;
        switch (byte & 0xF0) {
            case kRebaseDone:
                return;
            case kRebaseSetType:
                break;
            case kRebaseSetSegmentAndOffset:
                position.set(operand, code.uleb());
                break;
            case kRebaseAddAddress:
                position.advance(code.uleb());
                break;
            case kRebaseAddAddressScaled:
                position.advance(operand * kPointer);
                break;
            case kRebaseTimes:
                rebase(mapping, position, operand, 0);
                break;
            case kRebaseTimesLong:
                rebase(mapping, position, code.uleb(), 0);
                break;
            case kRebaseAndAddAddress:
                rebase(mapping, position, 1, code.uleb());
                break;
            case kRebaseTimesSkipping: {
                const std::uint64_t times = code.uleb();
                rebase(mapping, position, times, code.uleb());
                break;
            }
            default:
                throw ImageError("a rebase opcode is unknown");
        }
    }
}

void applyBinds(const ImageFile& file, const Mapping& mapping, const Resolver& resolve) {
    // The linker's export list leaves nothing to be bound weakly.
    if (!file.weakBinds.empty()) throw ImageError("has weak binds");
    const Position start(file, mapping);
    Binder(file.binds, start, resolve).run(Binding::atLoad);
    Binder(file.lazyBinds, start, resolve).run(Binding::lazy);
}

}  // namespace macho
