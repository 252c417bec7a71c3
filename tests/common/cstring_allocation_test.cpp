// Where the blocks of texts come from: one array allocation each, of exactly their size.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

#include "CString.h"

namespace {

constexpr std::size_t kMostSizes = 16;

// The array allocations of one operation; those of GoogleTest around it stay out.
struct Ledger {
    std::size_t sizes[kMostSizes];
    std::size_t taken;
    std::size_t given;
    bool isOpen;
};

Ledger ledger;

std::vector<std::size_t> takenBy(void (*operation)()) {
    ledger = {{}, 0, 0, true};
    operation();
    ledger.isOpen = false;
    EXPECT_EQ(ledger.given, ledger.taken);
    EXPECT_LE(ledger.taken, kMostSizes);
    return {ledger.sizes, ledger.sizes + std::min(ledger.taken, kMostSizes)};
}

}  // namespace

void* operator new[](std::size_t size) {
    if (ledger.isOpen) {
        if (ledger.taken < kMostSizes) ledger.sizes[ledger.taken] = size;
        ++ledger.taken;
    }
    if (void* const block = std::malloc(size)) return block;
    throw std::bad_alloc();
}

void operator delete[](void* block) noexcept {
    if (ledger.isOpen) ++ledger.given;
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept { operator delete[](block); }

namespace {

using Sizes = std::vector<std::size_t>;

constexpr std::size_t blockFor(std::size_t length) {
    return sizeof(CString::CStringData) + length + 1;
}

TEST(CStringAllocation, OfATextIsOneArrayOfHeaderCharactersAndTerminator) {
    EXPECT_EQ(takenBy([] { const CString s("abc"); }), Sizes{blockFor(3)});
    EXPECT_EQ(takenBy([] { const CString s("ab\0c", 4); }), Sizes{blockFor(4)});
    EXPECT_EQ(takenBy([] { const CString s('x', 1000); }), Sizes{blockFor(1000)});
    EXPECT_EQ(takenBy([] { CString().GetBuffer(50); }), Sizes{blockFor(50)});
}

TEST(CStringAllocation, EmptyTextsTakeAndGiveNothing) {
    EXPECT_EQ(takenBy([] {
                  const CString s;
                  const CString fromText("");
                  const CString fromNull(static_cast<const char*>(nullptr));
                  const CString fromLength("abc", 0);
                  const CString repeated('x', 0);
                  CString copy(s);
                  copy = fromText;
                  copy += fromNull + repeated;
                  copy.Empty();
              }),
              Sizes());
}

TEST(CStringAllocation, CopiesAndAssignmentsOfATextTakeNothing) {
    EXPECT_EQ(takenBy([] {
                  const CString s("abc");
                  CString copy(s);
                  CString assigned;
                  assigned = s;
                  CString moved(std::move(assigned));
                  copy = std::move(moved);
              }),
              Sizes{blockFor(3)});
}

TEST(CStringAllocation, AppendingTakesABlockEachTimeTheRoomEnds) {
    EXPECT_EQ(takenBy([] {
                  CString s;
                  s += 'a';
                  s += 'b';
                  s += "cd";
              }),
              (Sizes{blockFor(1), blockFor(2), blockFor(4)}));
    EXPECT_EQ(takenBy([] {
                  CString s;
                  s.GetBuffer(4);
                  s += 'a';
                  s += 'b';
                  s += "cd";
              }),
              Sizes{blockFor(4)});
}

TEST(CStringAllocation, ConcatenationAndPartsTakeOneBlockForTheResult) {
    EXPECT_EQ(takenBy([] {
                  const CString s("abc");
                  const CString sum = s + "de";
                  const CString part = s.Left(99);
              }),
              (Sizes{blockFor(3), blockFor(5), blockFor(3)}));
}

TEST(CStringAllocation, FormattingTakesOneBlockOfTheEstimate) {
    EXPECT_EQ(takenBy([] {
                  CString s;
                  s.Format("%d", 5);
              }),
              Sizes{blockFor(32)});
}

}  // namespace
