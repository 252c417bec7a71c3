// Base64 and MD5 of any bytes: decoding undoes encoding, and takes any text as a decoder does that
// looks at one character after the other; a digest does not depend on how the bytes were split.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "CMD5.h"
#include "CRFCBase64.h"
#include "fuzz_input.h"
#include "text_bytes.h"
#include "text_of.h"

namespace {

std::string decodedByTheBit(const std::string& text) {
    const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned int bits = 0;
    int count = 0;
    for (const char c : text) {
        if (c == '\0' || static_cast<unsigned char>(c) >= 0x80) break;
        const std::size_t digit = digits.find(c);
        if (digit == std::string::npos) continue;
        bits = (bits << 6 | static_cast<unsigned int>(digit)) & 0xffff;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count);
    }
    return bytes;
}

void checkDecoding(const std::string& text) {
    const std::string expected = decodedByTheBit(text);
    EXPECT_EQ(textOf(CRFCBase64::Decode(text.c_str())), expected);

    CString out = "what was there before";
    EXPECT_EQ(CRFCBase64::Decode(text.c_str(), out), static_cast<int>(expected.size()));
    EXPECT_EQ(textOf(out), std::string(expected.c_str()));

    CArray<unsigned char, unsigned char> array;
    array.Add('x');
    EXPECT_EQ(CRFCBase64::Decode(text.c_str(), array), static_cast<int>(expected.size()));
    EXPECT_EQ(std::string(array.GetData(), array.GetData() + array.GetSize()), "x" + expected);
}

void checkEncoding(const std::string& bytes) {
    CString out = "=";
    const int length = CRFCBase64::Encode(bytesOf(bytes), static_cast<int>(bytes.size()), out);
    EXPECT_EQ(length, static_cast<int>((bytes.size() + 2) / 3 * 4));
    ASSERT_EQ(out.GetLength(), 1 + length);
    EXPECT_EQ(textOf(CRFCBase64::Decode(out)), bytes);
    const std::string padding = std::string((3 - bytes.size() % 3) % 3, '=');
    EXPECT_TRUE(textOf(out).ends_with(padding));
    EXPECT_EQ(textOf(out).find('=', 1),
              padding.empty() ? std::string::npos : textOf(out).size() - padding.size());
}

void checkDigest(const std::string& bytes, FuzzInput& splits) {
    std::array<unsigned char, 16> whole;
    std::array<unsigned char, 16> split;
    CMD5 md5;
    md5.HashBuffer(whole.data(), bytesOf(bytes), static_cast<int>(bytes.size()));
    md5.Init();
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t room = bytes.size() - at;
        const std::size_t length = splits.isEmpty() ? room : std::min(splits.below(200), room);
        md5.Update(bytesOf(bytes) + at, static_cast<int>(length));
        at += length;
    }
    md5.Final(split.data());
    EXPECT_EQ(whole, split);
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string bytes = input.text();
    checkDecoding(bytes);
    checkEncoding(bytes);
    checkDigest(bytes, input);
}
