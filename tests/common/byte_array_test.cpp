#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <new>
#include <random>
#include <stdexcept>
#include <vector>

#include "CArray.h"
#include "CPlex.h"
#include "failing_memory.h"

namespace {

using testing::ElementsAre;

// Shows what is allocated.
struct OpenArray : CArray<unsigned char, unsigned char> {
    using CArray::m_nGrowBy;
    using CArray::m_nMaxSize;
    using CArray::m_nSize;
    using CArray::m_pData;

    std::vector<unsigned char> bytes() const { return {GetData(), GetData() + GetSize()}; }
};

TEST(ByteArray, BeginsEmpty) {
    const OpenArray array;
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 0);
    EXPECT_EQ(array.m_nGrowBy, 0);
}

TEST(ByteArray, FirstSizeIsAllocatedExactlyAndZeroed) {
    OpenArray array;
    array.SetSize(7, -1);
    EXPECT_EQ(array.m_nMaxSize, 7);
    EXPECT_THAT(array.bytes(), ElementsAre(0, 0, 0, 0, 0, 0, 0));
}

TEST(ByteArray, AddTakesOneByteThenAStepOfFour) {
    OpenArray array;
    EXPECT_EQ(array.Add('a'), 0);
    EXPECT_EQ(array.m_nMaxSize, 1);
    EXPECT_EQ(array.Add('b'), 1);
    EXPECT_EQ(array.m_nMaxSize, 5);
    EXPECT_THAT(array.bytes(), ElementsAre('a', 'b'));
}

struct Growth {
    int size;
    int growBy;
    int newSize;
    int allocated;
};
class ByteArrayGrowth : public testing::TestWithParam<Growth> {};

TEST_P(ByteArrayGrowth, IsByStepUnlessMoreIsAsked) {
    OpenArray array;
    array.SetSize(GetParam().size, GetParam().growBy);
    array.SetSize(GetParam().newSize, -1);
    EXPECT_EQ(array.m_nMaxSize, GetParam().allocated);
    EXPECT_EQ(array.GetSize(), GetParam().newSize);
}

INSTANTIATE_TEST_SUITE_P(Automatic, ByteArrayGrowth,
                         testing::Values(Growth{1, 0, 2, 5}, Growth{39, 0, 40, 43},
                                         Growth{40, 0, 41, 45}, Growth{80, 0, 81, 90},
                                         Growth{8191, 0, 8192, 9214}, Growth{8200, 0, 8201, 9224},
                                         Growth{100000, 0, 100001, 101024}, Growth{80, 0, 90, 90},
                                         Growth{80, 0, 91, 91}));
INSTANTIATE_TEST_SUITE_P(Stated, ByteArrayGrowth,
                         testing::Values(Growth{1, 1, 2, 2}, Growth{10, 100, 11, 110},
                                         Growth{10, 100, 200, 200}, Growth{10, -2, 11, 11}));

TEST(ByteArray, StepIsKeptUntilAnotherIsStated) {
    OpenArray array;
    array.SetSize(1, 10);
    array.SetSize(2, -1);
    EXPECT_EQ(array.m_nGrowBy, 10);
    array.SetSize(2, 0);
    EXPECT_EQ(array.m_nGrowBy, 0);
}

TEST(ByteArray, GrowthCopiesAndZeroesTheNewBytes) {
    OpenArray array;
    array.Add(1);
    array.Add(2);
    array.SetSize(20, -1);
    std::vector<unsigned char> expected(20);
    expected[0] = 1;
    expected[1] = 2;
    EXPECT_EQ(array.bytes(), expected);
}

TEST(ByteArray, ShrinkingKeepsTheMemoryAndGrowingBackZeroes) {
    OpenArray array;
    for (unsigned char value = 1; value <= 8; ++value) array.Add(value);
    const unsigned char* const data = array.GetData();
    array.SetSize(2, -1);
    array.SetSize(5, -1);
    EXPECT_EQ(array.GetData(), data);
    EXPECT_THAT(array.bytes(), ElementsAre(1, 2, 0, 0, 0));
}

TEST(ByteArray, SizeZeroFreesAndClearsEveryField) {
    for (const int size : {0, -1, INT_MIN}) {
        OpenArray array;
        array.SetSize(5, 7);
        array.SetSize(size, 9);
        EXPECT_EQ(array.m_pData, nullptr);
        EXPECT_EQ(array.m_nSize, 0);
        EXPECT_EQ(array.m_nMaxSize, 0);
        EXPECT_EQ(array.m_nGrowBy, 0);
    }
}

TEST(ByteArray, SetAtGrowStoresInPlaceOrGrows) {
    OpenArray array;
    array.SetAtGrow(3, 9);
    array.SetAtGrow(1, 8);
    EXPECT_THAT(array.bytes(), ElementsAre(0, 8, 0, 9));
}

TEST(ByteArray, SetAtGrowIgnoresANegativeIndex) {
    OpenArray array;
    array.SetAtGrow(-1, 9);
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(ByteArray, SetAtGrowRefusesTheLastIndexOfAll) {
    OpenArray array;
    EXPECT_THROW(array.SetAtGrow(INT_MAX, 9), std::length_error);
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(ByteArray, WithoutMemoryRaisesAndStaysAsItIs) {
    OpenArray array;
    array.SetSize(3, 5);
    array.SetAtGrow(1, 'b');
    const unsigned char* const data = array.GetData();
    const auto raises = [](auto operation) {
        const FailingAllocation failing(1);
        EXPECT_THROW(operation(), std::bad_alloc);
    };
    raises([&] { array.SetSize(100, 7); });
    raises([&] { array.SetAtGrow(3, 'x'); });
    raises([&] { array.Add('x'); });
    EXPECT_EQ(array.GetData(), data);
    EXPECT_THAT(array.bytes(), ElementsAre(0, 'b', 0));
    EXPECT_EQ(array.m_nMaxSize, 3);
    EXPECT_EQ(array.m_nGrowBy, 5);
}

TEST(ByteArray, WithoutMemoryStaysEmpty) {
    OpenArray array;
    const FailingAllocation failing(1);
    EXPECT_THROW(array.SetSize(1, 9), std::bad_alloc);
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 0);
    EXPECT_EQ(array.m_nGrowBy, 0);
}

TEST(ByteArray, BehavesLikeAVector) {
    std::mt19937 random(71);
    OpenArray array;
    std::vector<unsigned char> model;
    for (int step = 0; step < 20000; ++step) {
        const auto value = static_cast<unsigned char>(random());
        switch (random() % 8) {
            case 0: {
                const auto size = random() % 3000;
                array.SetSize(static_cast<int>(size), static_cast<int>(random() % 20) - 1);
                model.resize(size);
                break;
            }
            case 1: {
                const auto index = random() % 1500;
                array.SetAtGrow(static_cast<int>(index), value);
                if (index >= model.size()) model.resize(index + 1);
                model[index] = value;
                break;
            }
            default:
                ASSERT_EQ(array.Add(value), static_cast<int>(model.size()));
                model.push_back(value);
        }
        ASSERT_EQ(array.bytes(), model) << "step " << step;
        ASSERT_LE(array.m_nSize, array.m_nMaxSize);
    }
}

TEST(BlockChain, ANewBlockStandsInFrontWithItsStorageBehindTheHeader) {
    CPlex* head = nullptr;
    CPlex* const first = CPlex::Create(head, 10, 3);
    EXPECT_EQ(head, first);
    EXPECT_EQ(first->pNext, nullptr);
    EXPECT_EQ(static_cast<char*>(first->data()) - reinterpret_cast<char*>(first),
              std::ptrdiff_t{sizeof(CPlex*)});
    CPlex* const second = CPlex::Create(head, 1, 1);
    EXPECT_EQ(head, second);
    EXPECT_EQ(second->pNext, first);
    head->FreeDataChain();
}

TEST(BlockChain, StorageHoldsTheElementsAskedFor) {
    CPlex* head = nullptr;
    for (unsigned int count = 0; count < 100; ++count) {
        void* const data = CPlex::Create(head, count, 24)->data();
        std::fill_n(static_cast<unsigned char*>(data), count * 24, static_cast<unsigned char>(1));
    }
    head->FreeDataChain();
}

TEST(BlockChain, WithoutMemoryRaisesAndLeavesTheHead) {
    CPlex* head = nullptr;
    CPlex* const block = CPlex::Create(head, 1, 8);
    {
        const FailingAllocation failing(1);
        EXPECT_THROW(CPlex::Create(head, 1, 8), std::bad_alloc);
    }
    EXPECT_EQ(head, block);
    EXPECT_EQ(block->pNext, nullptr);
    head->FreeDataChain();
}

TEST(BlockChain, FreeingFromTheMiddleKeepsTheBlocksBefore) {
    CPlex* head = nullptr;
    CPlex::Create(head, 1, 8);
    CPlex* const middle = CPlex::Create(head, 1, 8);
    CPlex* const last = CPlex::Create(head, 1, 8);
    middle->FreeDataChain();
    last->pNext = nullptr;
    last->FreeDataChain();
}

}  // namespace
