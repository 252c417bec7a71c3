#include "unwind_tables.h"

#include "compact_frame.h"
#include "compact_unwind.h"
#include "dwarf_frame.h"

// libgcc's, for code that was made at run time.
extern "C" void __register_frame(const void* table);
extern "C" void __deregister_frame(const void* table);

namespace macho {

UnwindTables::UnwindTables(const ImageFile& file, const Mapping& mapping)
    : m_table(std::make_unique<FrameTable>()) {
    const std::vector<CompactRecord> records = readCompactUnwind(file, mapping);
    m_count = records.size();
    for (const CompactRecord& record : records) {
        if (modeOf(record.encoding) == kDwarfMode) {
            copyDwarfFrame(record, file, mapping, *m_table);
            continue;
        }
        const std::uint8_t* function = mapping.at(file.lowest + record.function, record.length);
        m_table->begin({reinterpret_cast<std::uintptr_t>(function), record.length,
                        record.personality, record.handlers},
                       {});
        describeFrame(record.encoding, function, *m_table);
        m_table->end();
    }
    m_table->finish();
    if (m_count != 0) __register_frame(m_table->bytes().data());
}

UnwindTables::~UnwindTables() {
    if (m_table && m_count != 0) __deregister_frame(m_table->bytes().data());
}

void UnwindTables::leave() {
    static auto& kept = *new std::vector<std::unique_ptr<FrameTable>>;
    kept.push_back(std::move(m_table));
}

}  // namespace macho
