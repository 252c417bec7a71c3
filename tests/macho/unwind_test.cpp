// Exceptions pass through every kind of frame that a linker for macOS describes.

#include <gmock/gmock.h>

#include "images.h"
#include "loader/compact_frame.h"
#include "loader/compact_unwind.h"
#include "loader/exports_trie.h"
#include "loader/frame_table.h"
#include "loader/macho_image.h"

namespace {

using macho::CompactRecord;

// <mach-o/compact_unwind_encoding.h>: UNWIND_X86_64_MODE_*, UNWIND_ARM64_MODE_*.
struct Form {
    const char* function;
    std::uint32_t mode;
};
#if defined(__aarch64__)
constexpr Form kForms[] = {{"throughFramePointer", 4},
                           {"throughFramePointerWithSomeRegisters", 4},
                           {"throughFramePointerWithAllRegisters", 4},
                           {"throughDwarf", 3}};
#else
constexpr Form kForms[] = {{"throughFramePointer", 1},
                           {"throughStack", 2},
                           {"throughStackWithAllRegisters", 2},
                           {"throughLargeStack", 3},
                           {"throughDwarf", 4}};
#endif

std::string path() { return imagePath("unwind_forms"); }

std::uint32_t modeOf(const std::string& function) {
    const macho::ImageFile file(path());
    const macho::Mapping mapping(file);
    const std::uint64_t at = macho::readExports(file.exportsTrie).at("_" + function);
    for (const CompactRecord& record : macho::readCompactUnwind(file, mapping))
        if (record.function <= at && at - record.function < record.length)
            return macho::modeOf(record.encoding);
    return 0;
}

class Unwinding : public testing::TestWithParam<Form> {};

TEST_P(Unwinding, PassesTheFrameAndBringsTheRegistersBack) {
    ASSERT_EQ(modeOf(GetParam().function), GetParam().mode);
    const macho::MachoImage image(path());
    const auto run = reinterpret_cast<int (*)(void*)>(image.symbol("throwThrough"));
    ASSERT_NE(run, nullptr);
    void* frame = image.symbol(GetParam().function);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(run(frame), 0);
}

INSTANTIATE_TEST_SUITE_P(Forms, Unwinding, testing::ValuesIn(kForms),
                         [](const auto& row) { return row.param.function; });

TEST(CompactFrame, RefusesAModeThatIsNotKnown) {
    macho::FrameTable table;
    table.begin({}, {});
    const std::uint8_t code[16] = {};
    for (const std::uint32_t mode : {5U, 9U, 15U})
        EXPECT_THROW(macho::describeFrame(mode << 24, code, table), macho::ImageError) << mode;
}

#if defined(__aarch64__)

// Such a function cannot call another, so that no exception gets there: what the table would say.
TEST(CompactFrame, OfAFunctionWithoutOneLeavesTheReturnAddressInItsRegister) {
    macho::FrameTable expected;
    expected.begin({}, {});
    expected.defineFrame(31, 48);
    expected.savedAt(19, 1);
    expected.savedAt(20, 2);
    expected.savedAt(74, 3);  // d10
    expected.savedAt(75, 4);
    macho::FrameTable table;
    table.begin({}, {});
    macho::describeFrame(0x02003000 | 0x001 | 0x200, nullptr, table);
    EXPECT_EQ(table.bytes(), expected.bytes());
}

#else

TEST(CompactFrame, RefusesMoreRegistersThanThereAre) {
    macho::FrameTable table;
    table.begin({}, {});
    EXPECT_THROW(macho::describeFrame(0x02001C00, nullptr, table), macho::ImageError);
}

#endif

}  // namespace
