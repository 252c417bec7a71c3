#include "ClientData.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <atomic>
#include <random>
#include <string>
#include <string_view>
#include <thread>

#include "CRFCBase64.h"
#include "on_threads.h"
#include "random_seed.h"
#include "text_of.h"

namespace {

// The key that the signer in this program was compiled with.
constexpr std::string_view key = ZERVA_TEST_PRELOGON_KEY;
static_assert(key.size() == 64);

// The signature by the peer's HMAC and the peer's Base64.
std::string peerSignature(std::string_view message) {
    unsigned char digest[16];
    HMAC(EVP_md5(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(message.data()), message.size(), digest, nullptr);
    unsigned char text[25];
    EVP_EncodeBlock(text, digest, sizeof digest);
    return reinterpret_cast<const char*>(text);
}

TEST(Signature, IsTheBase64TextOfTheKeyedHash) {
    for (const char* message : {"", "a", "abc", "session=1&token=2", "\xff\x80 high"}) {
        EXPECT_EQ(textOf(signMessage(message, "t")), peerSignature(message)) << message;
    }
}

TEST(Signature, IsAlways24CharactersTheLastTwoOfThemPadding) {
    for (const std::size_t length : {0, 1, 55, 56, 63, 64, 65, 1000}) {
        const std::string signature = textOf(signMessage(std::string(length, 'm').c_str(), ""));
        EXPECT_EQ(signature.size(), 24U) << length;
        EXPECT_EQ(signature.substr(22), "==") << length;
        EXPECT_NE(signature[21], '=') << length;
    }
}

TEST(Signature, RandomMessagesAgreeWithThePeer) {
    std::mt19937 random(randomSeed());
    for (int round = 0; round < randomRounds(2000); ++round) {
        std::string message(random() % 400, '\0');
        for (char& c : message) c = static_cast<char>(random() % 255 + 1);
        ASSERT_EQ(textOf(signMessage(message.c_str(), nullptr)), peerSignature(message));
    }
}

TEST(Signature, DoesNotDependOnTheToken) {
    const CString signature = signMessage("message", "one");
    EXPECT_EQ(signMessage("message", "two"), signature);
    EXPECT_EQ(signMessage("message", ""), signature);
    EXPECT_EQ(signMessage("message", nullptr), signature);
}

TEST(Signature, DependsOnTheMessage) {
    EXPECT_NE(signMessage("message", ""), signMessage("messagf", ""));
}

TEST(Signature, OfANullMessageIsThatOfTheEmptyOne) {
    EXPECT_EQ(textOf(signMessage(nullptr, "t")), peerSignature(""));
}

TEST(Signature, FirstSigningsOnManyThreadsAtOnceAreRight) {
    constexpr int count = 8;
    const std::string expected = peerSignature("message");
    std::atomic<int> ready{0};
    std::atomic<int> right{0};
    onThreads(count, [&](int) {
        ++ready;
        while (ready < count) std::this_thread::yield();
        for (int round = 0; round < 100; ++round) {
            if (textOf(signMessage("message", "t")) == expected) ++right;
        }
    });
    EXPECT_EQ(right, count * 100);
}

TEST(ClientData, IsTheEncodedRecordWithItsSignatureBehindIt) {
    const std::string record = "session=S&device_info=D&agent_result=A&token=T";
    EXPECT_EQ(textOf(CRFCBase64::Decode(formatClientData("S", "D", "A", "T"))),
              record + "&signature=" + peerSignature(record));
}

TEST(ClientData, TextsAreInsertedAsTheyAre) {
    const std::string record = "session=a&b=c&device_info=%41%s&agent_result=<x y>&token=\xc3\xa4+";
    EXPECT_EQ(textOf(CRFCBase64::Decode(formatClientData("a&b=c", "%41%s", "<x y>", "\xc3\xa4+"))),
              record + "&signature=" + peerSignature(record));
}

TEST(ClientData, EmptyTextsLeaveTheirNames) {
    const std::string record = "session=&device_info=&agent_result=&token=";
    EXPECT_EQ(textOf(CRFCBase64::Decode(formatClientData("", "", "", ""))),
              record + "&signature=" + peerSignature(record));
}

TEST(ClientData, NullTextsAreWrittenAsFormattingWritesThem) {
    const std::string record = "session=(null)&device_info=(null)&agent_result=(null)&token=(null)";
    EXPECT_EQ(textOf(CRFCBase64::Decode(formatClientData(nullptr, nullptr, nullptr, nullptr))),
              record + "&signature=" + peerSignature(record));
}

TEST(ClientData, LongTextsAreWhole) {
    const std::string info(100000, 'i');
    const std::string record = "session=s&device_info=" + info + "&agent_result=a&token=t";
    EXPECT_EQ(textOf(CRFCBase64::Decode(formatClientData("s", info.c_str(), "a", "t"))),
              record + "&signature=" + peerSignature(record));
}

}  // namespace
