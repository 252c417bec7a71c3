// Bytes as URL text and as hexadecimal text: decoding undoes encoding, results are as long as they
// must be, decoders take anything, and nothing is written behind the room that was given.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "HexText.h"
#include "UrlText.h"
#include "fuzz_input.h"
#include "text_bytes.h"
#include "text_of.h"

namespace {

CString cstring(const std::string& text) {
    return CString(text.data(), static_cast<int>(text.size()));
}

bool isHexDigit(char c) {
    return std::string("0123456789abcdefABCDEF").find(c) != std::string::npos;
}

constexpr unsigned char kCanary = 0xA5;

// Either form of decoding: both results, and what stays of the room.
void checkHexToBin(const std::string& hex, unsigned int room) {
    const std::size_t pairs = hex.size() / 2;
    std::vector<unsigned char> forward(room + 1, kCanary);
    std::vector<unsigned char> backward(room + 1, kCanary);
    const int result = HexToBin(hex.c_str(), forward.data(), room);
    EXPECT_EQ(HexToBinReverse(hex.c_str(), backward.data(), room), result);

    const auto isDigit = [](char c) { return isHexDigit(c); };
    const auto end = hex.begin() + static_cast<std::ptrdiff_t>(2 * pairs);
    const auto good =
        static_cast<std::size_t>(std::find_if_not(hex.begin(), end, isDigit) - hex.begin()) / 2;
    const bool fits = pairs <= room;
    EXPECT_EQ(result, !fits ? -1 : good < pairs ? -2 : 0);
    const std::size_t written = fits ? good : 0;
    for (std::size_t i = 0; i < written; ++i) {
        const int byte = std::stoi(hex.substr(2 * i, 2), nullptr, 16);
        EXPECT_EQ(forward[i], byte);
        EXPECT_EQ(backward[pairs - 1 - i], byte);
    }
    const auto untouched = [](const auto& bytes) {
        return std::count(bytes.begin(), bytes.end(), kCanary);
    };
    const auto least = static_cast<std::ptrdiff_t>(room + 1 - written);
    EXPECT_GE(untouched(forward), least);
    EXPECT_GE(untouched(backward), least);
}

void checkHexRoundTrip(const std::string& bytes) {
    const auto length = static_cast<unsigned int>(bytes.size());
    const CString hex = BinToHex(bytesOf(bytes), length, 0);
    ASSERT_EQ(hex.GetLength(), static_cast<int>(2 * length));
    std::string back(bytes.size(), '\0');
    EXPECT_EQ(HexToBin(hex, reinterpret_cast<unsigned char*>(back.data()), length), 0);
    EXPECT_EQ(back, bytes);

    CString spaced = BinToHex(bytesOf(bytes), length, kHexSpaced);
    EXPECT_EQ(spaced.GetLength(), static_cast<int>(3 * length));
    spaced.Replace(" ", "");
    EXPECT_EQ(spaced, hex);

    const std::string dump = textOf(BinToHex(bytesOf(bytes), length, kHexDump));
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), (length + 15) / 16);
}

void checkUrl(const std::string& bytes) {
    const CString text = cstring(bytes);
    const CString encoded = URLEncode(text);
    EXPECT_TRUE(textOf(encoded).find_first_not_of("%0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                  "abcdefghijklmnopqrstuvwxyz") ==
                std::string::npos);
    EXPECT_EQ(textOf(URLDecode(encoded)), bytes);

    const std::string decoded = URLDecode_s(bytes);
    EXPECT_EQ(textOf(URLDecode(text)), decoded);
    EXPECT_LE(decoded.size(), bytes.size());
    EXPECT_EQ((bytes.size() - decoded.size()) % 2, 0U);
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const auto room = static_cast<unsigned int>(input.below(40));
    const std::string bytes = input.text();
    const std::string line = bytes.c_str();
    checkHexToBin(line, room);
    checkHexRoundTrip(bytes);
    checkUrl(bytes);
    EXPECT_EQ(textOf(URLDecode(encodeToHex(line.c_str()))), line);
    CString pairs = encodeToHex(line.c_str());
    pairs.Replace("%", "");
    EXPECT_EQ(pairs, encodeToHexWithoutPercent(line.c_str()));
}
