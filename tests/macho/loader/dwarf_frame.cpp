#include "dwarf_frame.h"

#include <string>

// The layout of .eh_frame is that of the Linux Standard Base, "Exception Frames".

namespace macho {

namespace {

constexpr std::uint8_t kOmitted = 0xFF;

// An address that may be short, relative to where it stands, or itself only the place of one.
std::uint64_t readPointer(Cursor& cursor, std::uint8_t encoding) {
    const auto place = reinterpret_cast<std::uintptr_t>(cursor.rest().data());
    std::uint64_t value = 0;
    switch (encoding & 0x0F) {
        case 0x00:
        case 0x04:
        case 0x0C:
            value = cursor.read<std::uint64_t>();
            break;
        case 0x03:
            value = cursor.read<std::uint32_t>();
            break;
        case 0x0B:
            value = static_cast<std::uint64_t>(std::int64_t{cursor.read<std::int32_t>()});
            break;
        default:
            throw ImageError("a frame description has pointers of an unknown size");
    }
    if (value != 0 && (encoding & 0x70) == 0x10) value += place;
    if (value != 0 && (encoding & 0x80) != 0)
        value = load<std::uint64_t>(reinterpret_cast<const void*>(value));
    return value;
}

// What descriptions have in common.
struct Common {
    FrameTable::Factors factors;
    std::uint8_t functionEncoding = 0;
    std::uint8_t handlersEncoding = kOmitted;
    std::uint64_t personality = 0;
    bool isSized = false;
    ByteSpan instructions;
};

void readAugmentation(const std::string& letters, Cursor data, Common& common) {
    for (const char letter : letters) {
        if (letter == 'P') {
            const auto encoding = data.read<std::uint8_t>();
            common.personality = readPointer(data, encoding);
        }
        if (letter == 'L') common.handlersEncoding = data.read<std::uint8_t>();
        if (letter == 'R') common.functionEncoding = data.read<std::uint8_t>();
    }
}

ByteSpan entryAt(ByteSpan section, std::size_t offset) {
    Cursor cursor(section, offset);
    const auto length = cursor.read<std::uint32_t>();
    if (length > cursor.rest().size()) throw ImageError("a frame description is cut short");
    return cursor.rest().first(length);
}

Common readCommon(ByteSpan section, std::size_t offset) {
    Common common;
    Cursor cursor(entryAt(section, offset));
    cursor.skip(5);  // the mark of a common entry, the version
    const std::string augmentation = cursor.text();
    common.factors.code = cursor.uleb();
    common.factors.data = static_cast<std::uint8_t>(cursor.sleb() & 0x7F);
    cursor.skip(1);  // the column of the return address
    common.isSized = augmentation.starts_with('z');
    if (common.isSized) {
        const std::uint64_t size = cursor.uleb();
        readAugmentation(augmentation, cursor, common);
        cursor.skip(size);
    }
    common.instructions = cursor.rest();
    return common;
}

}  // namespace

void copyDwarfFrame(const CompactRecord& record, const ImageFile& file, const Mapping& mapping,
                    FrameTable& table) {
    const Section* place = file.section("__eh_frame");
    if (place == nullptr) throw ImageError("the frame descriptions are missing");
    const ByteSpan section(mapping.at(place->address, place->size), place->size);
    const std::size_t offset = record.encoding & 0xFFFFFF;

    Cursor cursor(entryAt(section, offset));
    const std::size_t back = cursor.read<std::uint32_t>();
    if (back > offset + 4) throw ImageError("a frame description points nowhere");
    const Common common = readCommon(section, offset + 4 - back);
    readPointer(cursor, common.functionEncoding);
    readPointer(cursor, common.functionEncoding & 0x0F);  // its length
    FrameHead head{reinterpret_cast<std::uintptr_t>(mapping.at(file.lowest + record.function)),
                   record.length, common.personality, record.handlers};
    if (common.isSized) {
        const std::uint64_t size = cursor.uleb();
        Cursor data = cursor;
        // The linker may leave the handlers' table out of the compact record.
        if (size != 0 && common.handlersEncoding != kOmitted)
            head.handlers = readPointer(data, common.handlersEncoding);
        cursor.skip(size);
    }
    table.begin(head, common.factors, common.instructions);
    table.copy(cursor.rest());
    table.end();
}

}  // namespace macho
