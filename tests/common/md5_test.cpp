#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "md5_digest.h"
#include "table_slot.h"

namespace {

std::string hex(const Digest& digest) {
    std::string text;
    for (const unsigned char byte : digest) {
        constexpr std::string_view digits = "0123456789abcdef";
        text += {digits[byte / 16], digits[byte % 16]};
    }
    return text;
}

// Shows the state and counts the operations that come through the object's own table.
struct OpenMD5 : CMD5 {
    using CMD5::buf;
    using CMD5::bytes;
    using CMD5::CMD5;
    using CMD5::in;

    void Init() override {
        calls += 'I';
        CMD5::Init();
    }
    void Update(const unsigned char* data, int len) override {
        calls += 'U';
        CMD5::Update(data, len);
    }
    void Final(unsigned char* digest) override {
        calls += 'F';
        CMD5::Final(digest);
    }
    bool isZero() const {
        const auto zero = [](unsigned int word) { return word == 0; };
        return std::ranges::all_of(buf, zero) && std::ranges::all_of(bytes, zero) &&
               std::ranges::all_of(in, zero);
    }

    std::string calls;
};

struct Vector {
    const char* text;
    const char* digest;
};
class MD5Vector : public testing::TestWithParam<Vector> {};

TEST_P(MD5Vector, HasThePublishedDigest) {
    EXPECT_EQ(hex(hashOf(GetParam().text)), GetParam().digest);
}

INSTANTIATE_TEST_SUITE_P(
    Rfc1321, MD5Vector,
    testing::Values(
        Vector{"", "d41d8cd98f00b204e9800998ecf8427e"},
        Vector{"a", "0cc175b9c0f1b6a831c399e269772661"},
        Vector{"abc", "900150983cd24fb0d6963f7d28e17f72"},
        Vector{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        Vector{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        Vector{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
               "d174ab98d277d9f5a5611c2c9f419d9f"},
        Vector{"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
               "57edf4a22be3c955ac49da2e2107b67a"}));

TEST(MD5, IsAHashOf128Bits) {
    static_assert(std::is_base_of_v<CHash, CMD5>);
    EXPECT_EQ(CMD5().HashLengthBits(), 128);
}

TEST(MD5, TheInterfaceIsAbstractHoldsNoDataAndDestroysThroughItself) {
    static_assert(std::is_abstract_v<CHash>);
    static_assert(std::has_virtual_destructor_v<CHash>);
    EXPECT_EQ(sizeof(CHash), sizeof(void*));
}

TEST(MD5, OperationsStandInThePublishedTableOrder) {
    const std::array slots{slotOf(&CHash::Init), slotOf(&CHash::Update), slotOf(&CHash::Final),
                           slotOf(&CHash::HashBuffer), slotOf(&CHash::HashLengthBits)};
    for (std::size_t i = 1; i < slots.size(); ++i) EXPECT_EQ(slots[i], slots[0] + i);
}

TEST(MD5, StateStandsInThePublishedOrder) {
    EXPECT_EQ(sizeof(CMD5), sizeof(void*) + 88);
    const OpenMD5 md5;
    EXPECT_EQ(static_cast<const void*>(md5.buf + 4), md5.bytes);
    EXPECT_EQ(static_cast<const void*>(md5.bytes + 2), md5.in);
}

TEST(MD5, ConstructorInitialises) {
    const OpenMD5 md5;
    EXPECT_EQ(md5.buf[0], 0x67452301u);
    EXPECT_EQ(md5.buf[1], 0xefcdab89u);
    EXPECT_EQ(md5.buf[2], 0x98badcfeu);
    EXPECT_EQ(md5.buf[3], 0x10325476u);
    EXPECT_EQ(md5.bytes[0], 0u);
    EXPECT_EQ(md5.bytes[1], 0u);
}

TEST(MD5, ZeroFilledConstructorLeavesEverythingZero) {
    EXPECT_TRUE(OpenMD5(CMD5::zeroFilled).isZero());
}

TEST(MD5, InitRestartsButLeavesTheInputBlock) {
    OpenMD5 md5;
    md5.Update(bytesOf("tail"), 4);
    const unsigned int tail = md5.in[0];
    md5.Init();
    EXPECT_EQ(md5.in[0], tail);
    EXPECT_NE(tail, 0u);
    EXPECT_EQ(md5.bytes[0], 0u);
    EXPECT_EQ(finish(md5), hashOf(""));
}

TEST(MD5, UpdateIgnoresANullPointer) {
    OpenMD5 md5;
    md5.Update(nullptr, 5);
    EXPECT_EQ(md5.bytes[0], 0u);
    EXPECT_EQ(finish(md5), hashOf(""));
}

TEST(MD5, UpdateIgnoresALengthThatIsNotPositive) {
    OpenMD5 md5;
    for (const int length : {0, -1, -64, -2147483647 - 1}) md5.Update(bytesOf("abc"), length);
    EXPECT_EQ(md5.bytes[0], 0u);
    EXPECT_EQ(finish(md5), hashOf(""));
}

TEST(MD5, UpdateCarriesTheByteCountIntoItsHighWord) {
    OpenMD5 md5;
    md5.bytes[0] = 0xffffffc0u;
    md5.Update(bytesOf(std::string(70, 'x')), 70);
    EXPECT_EQ(md5.bytes[0], 6u);
    EXPECT_EQ(md5.bytes[1], 1u);
}

struct Length {
    unsigned int low;
    unsigned int high;
    std::array<unsigned int, 2> bits;
};
class MD5Length : public testing::TestWithParam<Length> {};

TEST_P(MD5Length, IsHashedInBitsOfWhichThereAre64) {
    OpenMD5 md5;
    md5.bytes[0] = GetParam().low;
    md5.bytes[1] = GetParam().high;
    // The last block when nothing is left but the length.
    std::array<unsigned int, 16> block{0x80};
    block[14] = GetParam().bits[0];
    block[15] = GetParam().bits[1];
    std::array<unsigned int, 4> chain{0x67452301u, 0xefcdab89u, 0x98badcfeu, 0x10325476u};
    CMD5::Transform(chain.data(), block.data());
    CMD5::byteSwap(chain.data(), 4);
    Digest expected;
    std::memcpy(expected.data(), chain.data(), sizeof chain);
    EXPECT_EQ(finish(md5), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, MD5Length,
    testing::Values(Length{64, 0, {512, 0}}, Length{0x1fffffc0, 0, {0xfffffe00, 0}},
                    Length{0x20000000, 0, {0, 1}}, Length{0xffffffc0, 0, {0xfffffe00, 7}},
                    Length{0, 1, {0, 8}}, Length{0x40000040, 0x12345678, {0x200, 0x91a2b3c2}}));

TEST(MD5, FinalWipesTheWholeState) {
    OpenMD5 md5;
    md5.Update(bytesOf(std::string(100, 'x')), 100);
    finish(md5);
    EXPECT_TRUE(md5.isZero());
}

TEST(MD5, FinalWithoutADigestStillWipes) {
    OpenMD5 md5;
    md5.Update(bytesOf("abc"), 3);
    md5.Final(nullptr);
    EXPECT_TRUE(md5.isZero());
}

TEST(MD5, SecondHashNeedsInit) {
    CMD5 md5;
    md5.Update(bytesOf("abc"), 3);
    finish(md5);
    md5.Update(bytesOf("abc"), 3);
    EXPECT_NE(finish(md5), hashOf("abc"));
    md5.Init();
    md5.Update(bytesOf("abc"), 3);
    EXPECT_EQ(finish(md5), hashOf("abc"));
}

TEST(MD5, HashBufferGoesThroughTheObjectsOwnOperations) {
    OpenMD5 md5;
    Digest digest;
    md5.HashBuffer(digest.data(), bytesOf("abc"), 3);
    EXPECT_EQ(md5.calls, "IUF");
    EXPECT_EQ(digest, hashOf("abc"));
}

TEST(MD5, HashBufferNeedsNoInitBefore) {
    CMD5 md5(CMD5::zeroFilled);
    Digest digest;
    md5.HashBuffer(digest.data(), bytesOf("abc"), 3);
    EXPECT_EQ(digest, hashOf("abc"));
}

TEST(MD5, ByteSwapReadsWordsAsLittleEndian) {
    std::array<unsigned char, 8> bytes{0x01, 0x02, 0x03, 0x04, 0xf5, 0xf6, 0xf7, 0xf8};
    std::array<unsigned int, 2> words;
    std::memcpy(words.data(), bytes.data(), sizeof words);
    CMD5::byteSwap(words.data(), 2);
    EXPECT_EQ(words[0], 0x04030201u);
    EXPECT_EQ(words[1], 0xf8f7f6f5u);
}

TEST(MD5, TransformMixesOneBlock) {
    // The one block of the empty message.
    std::array<unsigned int, 16> block{0x80};
    std::array<unsigned int, 4> chain{0x67452301u, 0xefcdab89u, 0x98badcfeu, 0x10325476u};
    CMD5::Transform(chain.data(), block.data());
    EXPECT_EQ(chain, (std::array{0xd98c1dd4u, 0x04b2008fu, 0x980980e9u, 0x7e42f8ecu}));
}

TEST(MD5, EverySplitInTwoGivesTheDigestOfOneCall) {
    std::mt19937 random(2);
    const std::string text = randomText(random, 200);
    const Digest whole = hashOf(text);
    for (std::size_t at = 0; at <= text.size(); ++at) {
        CMD5 md5;
        md5.Update(bytesOf(text), static_cast<int>(at));
        md5.Update(bytesOf(text) + at, static_cast<int>(text.size() - at));
        EXPECT_EQ(finish(md5), whole) << at;
    }
}

TEST(MD5, UnalignedInputIsHashedAsIs) {
    std::string text(641, 'y');
    text[0] = '0';
    CMD5 md5;
    md5.Update(bytesOf(text) + 1, 640);
    EXPECT_EQ(finish(md5), hashOf(text.substr(1)));
}

}  // namespace
