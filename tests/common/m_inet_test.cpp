#include "m_inet.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "failing_memory.h"
#include "record_log.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Mask {
    Bytes bytes;
    int length;
};
class MaskLength : public testing::TestWithParam<Mask> {};

TEST_P(MaskLength, IsTheSumOfTheBytesOnes) {
    const RecordLog log;
    const Bytes& bytes = GetParam().bytes;
    unsigned char length = 200;
    EXPECT_EQ(mask2plen(bytes.data(), static_cast<int>(bytes.size()), &length), 0);
    EXPECT_EQ(length, GetParam().length);
    EXPECT_TRUE(log.items().empty());
}

INSTANTIATE_TEST_SUITE_P(Rows, MaskLength,
                         testing::Values(Mask{{255, 255, 255, 0}, 24}, Mask{{255, 254, 0, 0}, 15},
                                         Mask{{255, 255, 255, 255}, 32}, Mask{{0}, 0},
                                         Mask{{0, 0, 0, 0}, 0}, Mask{Bytes(16, 255), 128},
                                         Mask{Bytes(16, 0), 0},
                                         // Each byte is judged by itself.
                                         Mask{{0, 255}, 8}, Mask{{128, 0, 255, 192}, 11}));

TEST(MaskToPrefixLength, OfNoBytesIsZero) {
    const unsigned char byte = 7;
    unsigned char length = 200;
    EXPECT_EQ(mask2plen(&byte, 0, &length), 0);
    EXPECT_EQ(length, 0);
}

TEST(MaskToPrefixLength, TakesNineOfAllBytes) {
    const unsigned char ones[] = {0, 128, 192, 224, 240, 248, 252, 254, 255};
    for (int byte = 0; byte < 256; ++byte) {
        int expected = -1;
        for (int i = 0; i < 9; ++i) {
            if (ones[i] == byte) expected = i;
        }
        const RecordLog log;
        const unsigned char mask[] = {255, static_cast<unsigned char>(byte)};
        unsigned char length = 200;
        EXPECT_EQ(mask2plen(mask, 2, &length), expected < 0 ? -1 : 0) << byte;
        EXPECT_EQ(length, expected < 0 ? 200 : 8 + expected) << byte;
        ASSERT_EQ(log.items().size(), expected < 0 ? 1u : 0u) << byte;
        if (expected < 0) {
            EXPECT_EQ(
                withoutLine(log.items()[0]),
                "1, /m_inet.cpp, LINE, mask2plen, Invalid byte, " + std::to_string(byte) + "\n");
        }
    }
}

TEST(MaskToPrefixLength, RefusesNullPointers) {
    const unsigned char mask[] = {255};
    unsigned char length = 200;
    const RecordLog log;
    EXPECT_EQ(mask2plen(nullptr, 1, &length), -1);
    EXPECT_EQ(mask2plen(mask, 1, nullptr), -1);
    EXPECT_EQ(mask2plen(nullptr, -1, nullptr), -1);
    EXPECT_EQ(length, 200);
    ASSERT_EQ(log.items().size(), 3u);
    for (const std::string& item : log.items()) {
        EXPECT_EQ(withoutLine(item), "1, /m_inet.cpp, LINE, mask2plen, Invalid parameter\n");
    }
}

TEST(MaskToPrefixLength, RefusesCountsThatNoAddressHas) {
    const Bytes mask(17, 255);
    for (const int count : {-1, 17, INT_MIN, INT_MAX}) {
        const RecordLog log;
        unsigned char length = 200;
        EXPECT_EQ(mask2plen(mask.data(), count, &length), -1);
        EXPECT_EQ(length, 200);
        ASSERT_EQ(log.items().size(), 1u);
        EXPECT_EQ(withoutLine(log.items()[0]),
                  "1, /m_inet.cpp, LINE, mask2plen, Incorrect byte count, " +
                      std::to_string(count) + "\n");
    }
}

TEST(MaskToPrefixLength, SaysNothingBelowLevelOneOrWithoutALog) {
    const unsigned char mask[] = {3};
    unsigned char length = 200;
    {
        const RecordLog log(-1);
        EXPECT_EQ(mask2plen(nullptr, 1, &length), -1);
        EXPECT_EQ(mask2plen(mask, 1, &length), -1);
        EXPECT_EQ(mask2plen(mask, 17, &length), -1);
        EXPECT_TRUE(log.items().empty());
    }
    EXPECT_EQ(mask2plen(mask, 1, &length), -1);
    EXPECT_EQ(length, 200);
}

TEST(MaskToPrefixLength, WithoutMemoryForItsRecordOnlyLosesThat) {
    const unsigned char mask[] = {3};
    unsigned char length = 200;
    const RecordLog log;
    const FailingAllocation failing(1);
    EXPECT_EQ(mask2plen(mask, 1, &length), -1);
    EXPECT_TRUE(failing.happened());
    EXPECT_TRUE(log.items().empty());
}

}  // namespace
