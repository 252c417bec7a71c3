// The hash beside OpenSSL's.

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

#include "md5_digest.h"

namespace {

Digest referenceOf(std::string_view text) {
    Digest digest;
    EVP_Digest(text.data(), text.size(), digest.data(), nullptr, EVP_md5(), nullptr);
    return digest;
}

TEST(MD5Peer, EveryLengthAroundTheBlockEdgesAgrees) {
    std::mt19937 random(1321);
    for (std::size_t length = 0; length <= 300; ++length) {
        const std::string text = randomText(random, length);
        EXPECT_EQ(hashOf(text), referenceOf(text)) << length;
    }
}

TEST(MD5Peer, RandomLengthsAndSplitsAgree) {
    std::mt19937 random(64);
    for (int round = 0; round < 500; ++round) {
        const std::string text = randomText(random, random() % 5000);
        CMD5 md5;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t piece = std::min<std::size_t>(random() % 200, text.size() - at);
            md5.Update(bytesOf(text) + at, static_cast<int>(piece));
            at += piece;
        }
        EXPECT_EQ(finish(md5), referenceOf(text)) << "round " << round;
    }
}

}  // namespace
