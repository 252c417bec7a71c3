#include "compact_unwind.h"

#include <map>

namespace macho {

namespace {

constexpr std::uint32_t kRegularPage = 2;
constexpr std::uint32_t kHasHandlers = 0x40000000;
constexpr std::size_t kIndexEntry = 12;

struct Entry {
    std::uint32_t function;
    std::uint32_t encoding;
};

// The section's two-level table.
class UnwindInfo {
  public:
    explicit UnwindInfo(ByteSpan bytes) : m_bytes(bytes) {
        Cursor header(bytes, 4);
        m_commonEncodings = header.read<std::uint32_t>();
        m_commonCount = header.read<std::uint32_t>();
        m_personalities = header.read<std::uint32_t>();
        header.skip(4);
        m_index = header.read<std::uint32_t>();
        m_indexCount = header.read<std::uint32_t>();
        for (std::uint32_t i = 0; i + 1 < m_indexCount; ++i) readIndexEntry(i);
        // The last index entry is only the end of all functions.
        entries.push_back({word(m_index + kIndexEntry * (m_indexCount - 1)), 0});
    }

    std::vector<Entry> entries;
    std::map<std::uint32_t, std::uint32_t> handlers;

    // Where the image keeps the address of the personality that an encoding names; 0: none.
    std::uint32_t personalitySlot(std::uint32_t encoding) const {
        const std::uint32_t number = encoding >> 28 & 3;
        return number != 0 ? word(m_personalities + 4 * (number - 1)) : 0;
    }

  private:
    std::uint32_t word(std::size_t offset) const {
        return Cursor(m_bytes, offset).read<std::uint32_t>();
    }

    void readIndexEntry(std::uint32_t number) {
        Cursor entry(m_bytes, m_index + kIndexEntry * number);
        const auto function = entry.read<std::uint32_t>();
        const auto page = entry.read<std::uint32_t>();
        const auto firstHandler = entry.read<std::uint32_t>();
        const std::uint32_t lastHandler = word(m_index + kIndexEntry * (number + 1) + 8);
        for (std::uint32_t at = firstHandler; at < lastHandler; at += 8)
            handlers[word(at)] = word(at + 4);
        if (page != 0) readPage(page, function);
    }

    void readPage(std::uint32_t page, std::uint32_t firstFunction) {
        Cursor header(m_bytes, page);
        const bool isRegular = header.read<std::uint32_t>() == kRegularPage;
        const std::uint32_t start = page + header.read<std::uint16_t>();
        const auto count = header.read<std::uint16_t>();
        const std::uint32_t ownEncodings = isRegular ? 0 : page + header.read<std::uint16_t>();
        Cursor cursor(m_bytes, start);
        for (std::uint16_t i = 0; i < count; ++i) {
            const auto first = cursor.read<std::uint32_t>();
            if (isRegular) {
                entries.push_back({first, cursor.read<std::uint32_t>()});
            } else {
                entries.push_back({firstFunction + (first & 0xFFFFFF),
                                   compressedEncoding(first >> 24, ownEncodings)});
            }
        }
    }

    std::uint32_t compressedEncoding(std::uint32_t number, std::uint32_t ownEncodings) const {
        return number < m_commonCount ? word(m_commonEncodings + 4 * number)
                                      : word(ownEncodings + 4 * (number - m_commonCount));
    }

    ByteSpan m_bytes;
    std::uint32_t m_commonEncodings;
    std::uint32_t m_commonCount;
    std::uint32_t m_personalities;
    std::uint32_t m_index;
    std::uint32_t m_indexCount;
};

}  // namespace

std::vector<CompactRecord> readCompactUnwind(const ImageFile& file, const Mapping& mapping) {
    std::vector<CompactRecord> records;
    const Section* section = file.section("__unwind_info");
    if (section == nullptr) return records;
    const UnwindInfo info({mapping.at(section->address, section->size), section->size});

    for (std::size_t i = 0; i + 1 < info.entries.size(); ++i) {
        const auto [function, encoding] = info.entries[i];
        const std::uint32_t length = info.entries[i + 1].function - function;
        if (modeOf(encoding) == 0 || length == 0) continue;
        CompactRecord record{function, length, encoding, 0, 0};
        if (const std::uint32_t slot = info.personalitySlot(encoding))
            record.personality = load<std::uint64_t>(mapping.at(file.lowest + slot, 8));
        if ((encoding & kHasHandlers) != 0) {
            const std::uint32_t table = info.handlers.at(function);
            record.handlers = reinterpret_cast<std::uintptr_t>(mapping.at(file.lowest + table));
        }
        records.push_back(record);
    }
    return records;
}

}  // namespace macho
