#include "HexText.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "text_bytes.h"
#include "text_of.h"

namespace {

std::string hex(const std::string& bytes, unsigned int flags) {
    return textOf(BinToHex(bytesOf(bytes), static_cast<unsigned int>(bytes.size()), flags));
}

TEST(HexCharToNum, KnowsTheDigitsOfEitherCaseAndNoOtherCharacter) {
    const std::string digits = "0123456789abcdef";
    for (int c = -128; c < 128; ++c) {
        unsigned char value = 99;
        const auto at = c > 0 ? digits.find(static_cast<char>(std::tolower(c))) : std::string::npos;
        EXPECT_EQ(HexCharToNum(static_cast<char>(c), value), at != std::string::npos) << c;
        EXPECT_EQ(value, at != std::string::npos ? at : 99) << c;
    }
}

struct Conversion {
    const char* hex;
    unsigned int room;
    int result;
    std::string out;      // of "...." behind the conversion
    std::string reverse;  // the same of the reversing one
};
class HexToBinary : public testing::TestWithParam<Conversion> {};

TEST_P(HexToBinary, InOrder) {
    std::string out = "....";
    EXPECT_EQ(
        HexToBin(GetParam().hex, reinterpret_cast<unsigned char*>(out.data()), GetParam().room),
        GetParam().result);
    EXPECT_EQ(out, GetParam().out);
}

TEST_P(HexToBinary, Reversed) {
    std::string out = "....";
    EXPECT_EQ(HexToBinReverse(GetParam().hex, reinterpret_cast<unsigned char*>(out.data()),
                              GetParam().room),
              GetParam().result);
    EXPECT_EQ(out, GetParam().reverse);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HexToBinary,
    testing::Values(
        Conversion{"414243", 3, 0, "ABC.", "CBA."}, Conversion{"4a4B", 4, 0, "JK..", "KJ.."},
        Conversion{"0a1", 1, 0, "\n...", "\n..."}, Conversion{"4", 0, 0, "....", "...."},
        Conversion{"", 0, 0, "....", "...."}, Conversion{nullptr, 4, 0, "....", "...."},
        Conversion{"4142", 1, -1, "....", "...."}, Conversion{"zzzz", 1, -1, "....", "...."},
        Conversion{"zz", 4, -2, "....", "...."}, Conversion{"4z", 4, -2, "....", "...."},
        Conversion{"414z43", 3, -2, "A...", "..A."}, Conversion{"0x41", 4, -2, "....", "...."}));

TEST(HexToBin, NeedsSomewhereToWrite) {
    EXPECT_EQ(HexToBin("41", nullptr, 5), -1);
    EXPECT_EQ(HexToBin("", nullptr, 5), 0);
}

TEST(BinToHex, IsTwoLowerCaseDigitsAByte) {
    EXPECT_EQ(hex(std::string("\x00\x01\xab\xff", 4), 0), "0001abff");
    EXPECT_EQ(hex("", 0), "");
    EXPECT_EQ(textOf(BinToHex(nullptr, 5, 0)), "");
}

TEST(BinToHex, SpacedHasABlankBehindEachByte) {
    EXPECT_EQ(hex(std::string("\x00\xab", 2), 1), "00 ab ");
    EXPECT_EQ(hex("", 1), "");
}

TEST(BinToHex, OtherFlagsAreIgnored) { EXPECT_EQ(hex("A", 4), "41"); }

struct Dump {
    std::string bytes;
    std::string text;
};
class HexDump : public testing::TestWithParam<Dump> {};

TEST_P(HexDump, HasAColumnOfDigitsAndOneOfCharacters) {
    EXPECT_EQ(hex(GetParam().bytes, 2), GetParam().text);
    EXPECT_EQ(hex(GetParam().bytes, 3), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HexDump,
    testing::Values(
        Dump{"", ""},  //
        Dump{"A", "41 " + std::string(49, ' ') + "  A\n"},
        Dump{"ABCDEFGH", "41 42 43 44 45 46 47 48 " + std::string(28, ' ') + "  ABCDEFGH\n"},
        Dump{"ABCDEFGHI",
             "41 42 43 44 45 46 47 48   49 " + std::string(23, ' ') + "  ABCDEFGH I\n"},
        Dump{"ABCDEFGHIJKLMNOP",
             "41 42 43 44 45 46 47 48   49 4a 4b 4c 4d 4e 4f 50     ABCDEFGH IJKLMNOP\n"},
        Dump{"ABCDEFGHIJKLMNOPQ",
             "41 42 43 44 45 46 47 48   49 4a 4b 4c 4d 4e 4f 50     ABCDEFGH IJKLMNOP \n"
             "51 " +
                 std::string(49, ' ') + "  Q\n"},
        Dump{"\x1f ~\x7f\x80\xff", "1f 20 7e 7f 80 ff " + std::string(34, ' ') + "  . ~\x7f..\n"}));

// The dump as its rules tell it, a column at a time.
std::string plainDump(const std::string& bytes) {
    std::string result;
    std::string hexColumn;
    std::string textColumn;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % 8 == 0) {
            hexColumn += "  ";
            textColumn += " ";
        }
        if (i > 0 && i % 16 == 0) {
            result += hexColumn + "  " + textColumn + "\n";
            hexColumn.clear();
            textColumn.clear();
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        char digits[4];
        std::snprintf(digits, sizeof digits, "%.2x ", byte);
        hexColumn += digits;
        textColumn += byte >= 32 && byte <= 127 ? bytes[i] : '.';
    }
    if (hexColumn.empty()) return result;
    return result + hexColumn + std::string(52 - hexColumn.size(), ' ') + "  " + textColumn + "\n";
}

TEST(BinToHex, DumpsOfEveryLengthFollowTheRules) {
    std::mt19937 random(16);
    std::string bytes;
    for (int length = 0; length < 200; ++length) {
        EXPECT_EQ(hex(bytes, 2), plainDump(bytes)) << length;
        bytes += static_cast<char>(random());
    }
}

TEST(HexText, RoundTrip) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    std::string back(256, '\0');
    EXPECT_EQ(HexToBin(hex(bytes, 0).c_str(), reinterpret_cast<unsigned char*>(back.data()), 256),
              0);
    EXPECT_EQ(back, bytes);
}

TEST(EncodeToHex, IsAPercentSignAndTwoUpperCaseDigitsAByte) {
    EXPECT_EQ(textOf(encodeToHex("aZ ~\xab")), "%61%5A%20%7E%AB");
    EXPECT_EQ(textOf(encodeToHex("")), "");
    EXPECT_EQ(textOf(encodeToHex(nullptr)), "");
}

TEST(EncodeToHex, WithoutPercentIsTwoUpperCaseDigitsAByte) {
    EXPECT_EQ(textOf(encodeToHexWithoutPercent("aZ ~\xab")), "615A207EAB");
    EXPECT_EQ(textOf(encodeToHexWithoutPercent(nullptr)), "");
}

}  // namespace
