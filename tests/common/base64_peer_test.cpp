// The codec beside OpenSSL's.

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <random>
#include <string>
#include <string_view>

#include "base64_bytes.h"
#include "random_seed.h"

namespace {

std::string peerEncoded(std::string_view bytes) {
    std::string out((bytes.size() + 2) / 3 * 4 + 1, '\0');
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), bytesOf(bytes),
                    static_cast<int>(bytes.size()));
    out.pop_back();
    return out;
}

TEST(Base64Peer, EveryByteAndEveryPairOfBytesAgrees) {
    for (int first = 0; first < 256; ++first) {
        std::string bytes(1, static_cast<char>(first));
        ASSERT_EQ(encoded(bytes), peerEncoded(bytes));
        for (int second = 0; second < 256; ++second) {
            bytes.resize(1);
            bytes += static_cast<char>(second);
            ASSERT_EQ(encoded(bytes), peerEncoded(bytes));
            ASSERT_EQ(decoded(encoded(bytes).c_str()), bytes);
        }
    }
}

TEST(Base64Peer, RandomBytesAgreeAndComeBack) {
    std::mt19937 random(randomSeed());
    for (int round = 0; round < randomRounds(4000); ++round) {
        const std::string bytes = randomText(random, random() % 700);
        const std::string text = encoded(bytes);
        ASSERT_EQ(text, peerEncoded(bytes)) << "round " << round;
        ASSERT_EQ(decoded(text.c_str()), bytes) << "round " << round;
    }
}

}  // namespace
