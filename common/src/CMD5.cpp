#include "CMD5.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

namespace {

constexpr unsigned int kBlockBytes = 64;
constexpr unsigned int kLengthOffset = 56;  // the message's length ends the last block

using Chain = std::array<unsigned int, 4>;
using Block = std::array<unsigned int, 16>;

// The integer part of 2^32 * |sin(i + 1)|, i in radians.
constexpr std::array<unsigned int, 64> kSines{
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

// What sets one round apart: step i reads word (first + i * stride) mod 16 and turns by
// shifts[i mod 4].
struct Schedule {
    std::size_t first;
    std::size_t stride;
    std::array<int, 4> shifts;
};
constexpr std::array<Schedule, 4> kSchedules{{{0, 1, {7, 12, 17, 22}},
                                              {1, 5, {5, 9, 14, 20}},
                                              {5, 3, {4, 11, 16, 23}},
                                              {0, 7, {6, 10, 15, 21}}}};

// Keeps the compiler from working on `sum` in any other order than the one written.
inline void settle(unsigned int& sum) { asm("" : "+r"(sum)); }

// Adds the round's mixing function of b, c and d to `sum`. The steps form one dependency chain
// through b, so whatever does not need b is added before it.
template <std::size_t Round>
unsigned int addMixed(unsigned int sum, unsigned int b, unsigned int c, unsigned int d) {
    settle(sum);
    if constexpr (Round == 0) return sum + (d ^ (b & (c ^ d)));
    if constexpr (Round == 1) {
        sum += c & ~d;  // has no bit in common with the other half, so adding is joining
        settle(sum);
        return sum + (b & d);
    }
    if constexpr (Round == 2) return sum + (b ^ (c ^ d));
    if constexpr (Round == 3) return sum + (c ^ (b | ~d));
}

template <std::size_t Round, std::size_t Step>
void step(Chain& chain, const Block& block) {
    constexpr Schedule schedule = kSchedules[Round];
    // The words change places at every step: d, a, b, c.
    unsigned int& a = chain[(16 - Step) % 4];
    const unsigned int b = chain[(17 - Step) % 4];
    const unsigned int c = chain[(18 - Step) % 4];
    const unsigned int d = chain[(19 - Step) % 4];
    const unsigned int word = block[(schedule.first + Step * schedule.stride) % 16];
    const unsigned int sum = addMixed<Round>(a + word + kSines[Round * 16 + Step], b, c, d);
    a = b + std::rotl(sum, schedule.shifts[Step % 4]);
}

template <std::size_t Round, std::size_t... Steps>
void runSteps(Chain& chain, const Block& block, std::index_sequence<Steps...>) {
    (step<Round, Steps>(chain, block), ...);
}

inline void compress(Chain& chain, const Block& block) {
    constexpr std::make_index_sequence<16> steps;
    const Chain before = chain;
    runSteps<0>(chain, block, steps);
    runSteps<1>(chain, block, steps);
    runSteps<2>(chain, block, steps);
    runSteps<3>(chain, block, steps);
    for (std::size_t i = 0; i < chain.size(); ++i) chain[i] += before[i];
}

// Mixes `count` blocks into the chaining words straight from where they lie.
void compressBytes(unsigned int* buf, const unsigned char* data, std::size_t count) {
    Chain chain;
    std::memcpy(chain.data(), buf, sizeof chain);
    for (; count > 0; --count, data += kBlockBytes) {
        Block block;
        std::memcpy(block.data(), data, sizeof block);
        CMD5::byteSwap(block.data(), block.size());
        compress(chain, block);
    }
    std::memcpy(buf, chain.data(), sizeof chain);
}

}  // namespace

CMD5::CMD5() { CMD5::Init(); }

void CMD5::Init() {
    buf[0] = 0x67452301;
    buf[1] = 0xefcdab89;
    buf[2] = 0x98badcfe;
    buf[3] = 0x10325476;
    bytes[0] = 0;
    bytes[1] = 0;
}

void CMD5::Update(const unsigned char* data, int len) {
    if (data == nullptr || len <= 0) return;
    auto left = static_cast<unsigned int>(len);
    const unsigned int used = bytes[0] % kBlockBytes;
    bytes[0] += left;
    if (bytes[0] < left) ++bytes[1];

    auto* const block = reinterpret_cast<unsigned char*>(in);
    if (used > 0) {
        const unsigned int room = kBlockBytes - used;
        if (left < room) {
            std::memcpy(block + used, data, left);
            return;
        }
        std::memcpy(block + used, data, room);
        compressBytes(buf, block, 1);
        data += room;
        left -= room;
    }
    const unsigned int whole = left / kBlockBytes;
    compressBytes(buf, data, whole);
    std::memcpy(block, data + std::size_t{whole} * kBlockBytes, left % kBlockBytes);
}

void CMD5::Final(unsigned char* digest) {
    auto* const block = reinterpret_cast<unsigned char*>(in);
    unsigned int used = bytes[0] % kBlockBytes;
    block[used++] = 0x80;
    if (used > kLengthOffset) {
        std::memset(block + used, 0, kBlockBytes - used);
        compressBytes(buf, block, 1);
        used = 0;
    }
    std::memset(block + used, 0, kLengthOffset - used);
    byteSwap(in, 14);
    in[14] = bytes[0] << 3;
    in[15] = bytes[1] << 3 | bytes[0] >> 29;
    Transform(buf, in);
    byteSwap(buf, 4);
    if (digest != nullptr) std::memcpy(digest, buf, sizeof buf);

    std::memset(buf, 0, sizeof buf);
    std::memset(bytes, 0, sizeof bytes);
    std::memset(in, 0, sizeof in);
    // The compiler must not drop the wipe of an object that dies next.
    asm volatile("" : : "r"(this) : "memory");
}

void CMD5::HashBuffer(unsigned char* digest, const unsigned char* data, int len) {
    Init();
    Update(data, len);
    Final(digest);
}

int CMD5::HashLengthBits() const { return 128; }

void CMD5::byteSwap(unsigned int* words, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
        std::array<unsigned char, sizeof *words> b;
        std::memcpy(b.data(), &words[i], sizeof b);
        words[i] =
            unsigned{b[0]} | unsigned{b[1]} << 8 | unsigned{b[2]} << 16 | unsigned{b[3]} << 24;
    }
}

void CMD5::Transform(unsigned int* buf, const unsigned int* in) {
    Chain chain;
    Block block;
    std::memcpy(chain.data(), buf, sizeof chain);
    std::memcpy(block.data(), in, sizeof block);
    compress(chain, block);
    std::memcpy(buf, chain.data(), sizeof chain);
}
