#include <gmock/gmock.h>

#include <array>
#include <climits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base64_bytes.h"
#include "random_seed.h"

namespace {

using testing::Each;

// Shows the tables.
struct OpenBase64 : CRFCBase64 {
    using CRFCBase64::g_bInitialized;
    using CRFCBase64::g_digits;
    using CRFCBase64::g_xlate;
};

// The decoding rules once more, one character and one bit at a time.
std::string slowlyDecoded(std::string_view text) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<bool> bits;
    for (const char c : text) {
        if (static_cast<signed char>(c) <= 0) break;
        const std::size_t value = digits.find(c);
        if (value == std::string_view::npos) continue;
        for (int bit = 5; bit >= 0; --bit) bits.push_back((value >> bit & 1) != 0);
    }
    std::string out;
    for (std::size_t at = 0; at + 8 <= bits.size(); at += 8) {
        int byte = 0;
        for (std::size_t i = 0; i < 8; ++i) byte = byte * 2 + (bits[at + i] ? 1 : 0);
        out += static_cast<char>(byte);
    }
    return out;
}

// What the tables are before anything is decoded, though something was encoded.
struct Beginning {
    CString encoding = CRFCBase64::Encode("ABC");
    bool initialized = OpenBase64::g_bInitialized;
    std::array<signed char, 256> values = OpenBase64::g_xlate;
};
const Beginning beginning;

TEST(Base64Tables, DigitsAreTheStandardAlphabetAndThePad) {
    EXPECT_EQ(std::string_view(OpenBase64::g_digits),
              "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=");
    EXPECT_EQ(sizeof OpenBase64::g_digits, 66U);
}

TEST(Base64Tables, NoDigitHasAValueBeforeTheFirstDecoding) {
    EXPECT_EQ(beginning.encoding, "QUJD");
    EXPECT_FALSE(beginning.initialized);
    EXPECT_THAT(beginning.values, Each(127));
}

TEST(Base64Tables, TheFirstDecodingFillsInTheDigitsAndOnlyThem) {
    CRFCBase64::Decode("");
    EXPECT_TRUE(OpenBase64::g_bInitialized);
    std::array<signed char, 256> expected;
    expected.fill(127);
    for (signed char i = 0; i < 64; ++i) {
        expected[static_cast<unsigned char>(OpenBase64::g_digits[i])] = i;
    }
    EXPECT_EQ(OpenBase64::g_xlate, expected);
    EXPECT_EQ(OpenBase64::g_xlate['='], 127);
}

struct Vector {
    const char* bytes;
    const char* text;
};
class Base64Vector : public testing::TestWithParam<Vector> {};

TEST_P(Base64Vector, IsEncodedAndDecodedAsPublished) {
    EXPECT_EQ(CRFCBase64::Encode(GetParam().bytes), GetParam().text);
    EXPECT_EQ(encoded(GetParam().bytes), GetParam().text);
    EXPECT_EQ(CRFCBase64::Decode(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rfc4648, Base64Vector,
                         testing::Values(Vector{"", ""}, Vector{"f", "Zg=="}, Vector{"fo", "Zm8="},
                                         Vector{"foo", "Zm9v"}, Vector{"foob", "Zm9vYg=="},
                                         Vector{"fooba", "Zm9vYmE="},
                                         Vector{"foobar", "Zm9vYmFy"}));

TEST(Base64Encode, NothingIsEncodedAsNothing) {
    CString out("kept");
    EXPECT_EQ(CRFCBase64::Encode(bytesOf("abc"), 0, out), 0);
    EXPECT_EQ(CRFCBase64::Encode(bytesOf("abc"), -1, out), 0);
    EXPECT_EQ(CRFCBase64::Encode(bytesOf("abc"), INT_MIN, out), 0);
    EXPECT_EQ(CRFCBase64::Encode(nullptr, 3, out), 0);
    EXPECT_EQ(out, "kept");
    EXPECT_TRUE(CRFCBase64::Encode(nullptr).IsEmpty());
}

TEST(Base64Encode, AppendsAndCountsOnlyWhatItAppended) {
    CString out("text:");
    EXPECT_EQ(CRFCBase64::Encode(bytesOf("ABC"), 3, out), 4);
    EXPECT_EQ(CRFCBase64::Encode(bytesOf("A"), 1, out), 4);
    EXPECT_EQ(out, "text:QUJDQQ==");
}

TEST(Base64Encode, AResultThatNoLengthCanCountIsRefusedBeforeAByteIsRead) {
    CString out("old");
    // With the three characters that are there, 1610612733 bytes are the first too many.
    for (const int length : {1610612733, 1610612734, INT_MAX}) {
        EXPECT_THROW(CRFCBase64::Encode(bytesOf("abc"), length, out), std::length_error) << length;
        EXPECT_EQ(out, "old");
    }
}

TEST(Base64Encode, KeepsWhatStandsBeforeANulInTheOutput) {
    CString out("a\0b", 3);
    CRFCBase64::Encode(bytesOf("ABC"), 3, out);
    EXPECT_EQ(textOf(out), std::string("a\0bQUJD", 7));
}

TEST(Base64Encode, LeavesASharedTextToItsOtherOwner) {
    CString out("shared");
    const CString other(out);
    CRFCBase64::Encode(bytesOf("ABC"), 3, out);
    EXPECT_EQ(other, "shared");
    EXPECT_EQ(out, "sharedQUJD");
}

TEST(Base64Encode, MakesRoomForExactlyTheResult) {
    CString out;
    CRFCBase64::Encode(bytesOf(std::string(1000, 'x')), 1000, out);
    EXPECT_EQ(out.GetAllocLength(), 1336);
}

TEST(Base64Encode, NeverBreaksTheLine) {
    EXPECT_EQ(encoded(std::string(3000, 'M')).find_first_of("\r\n"), std::string::npos);
}

TEST(Base64Encode, HighBytesAndNulsAreBytesLikeAnyOther) {
    EXPECT_EQ(encoded(std::string_view("\0\0\0", 3)), "AAAA");
    EXPECT_EQ(encoded("\xff\xff\xff"), "////");
    EXPECT_EQ(encoded("\xfb\xef\xbe"), "++++");
    EXPECT_EQ(encoded(std::string_view("\x80\0", 2)), "gAA=");
}

struct Tolerance {
    const char* rule;
    const char* text;
    const char* bytes;
};
class Base64Tolerance : public testing::TestWithParam<Tolerance> {};

TEST_P(Base64Tolerance, Holds) { EXPECT_EQ(decoded(GetParam().text), GetParam().bytes); }

INSTANTIATE_TEST_SUITE_P(
    Decoding, Base64Tolerance,
    testing::Values(Tolerance{"WholeGroup", "QUJD", "ABC"}, Tolerance{"PaddedGroup", "QUI=", "AB"},
                    Tolerance{"MissingPad", "QUI", "AB"}, Tolerance{"MissingPads", "QQ", "A"},
                    Tolerance{"TooMuchPadding", "QQ======", "A"},
                    Tolerance{"PaddingInTheMiddleIsSkipped", "QU=JD=", "ABC"},
                    Tolerance{"PaddingDoesNotEndTheText", "QQ==QUJD", "A\x04\x14$"},
                    Tolerance{"SixBitsGiveNothing", "Q", ""},
                    Tolerance{"SixBitsBehindAGroupGiveNothing", "QUJDQ", "ABC"},
                    Tolerance{"TwelveBitsGiveOneByte", "QUJDRE", "ABCD"},
                    Tolerance{"EighteenBitsGiveTwoBytes", "QUJDREU", "ABCDE"},
                    Tolerance{"SurplusBitsAreDropped", "QV", "A"},
                    Tolerance{"WhiteSpaceIsSkipped", "QU JD\n", "ABC"},
                    Tolerance{"LineBreaksAreSkipped", "QUJD\r\nREVG\r\n", "ABCDEF"},
                    Tolerance{"ForeignCharactersAreSkipped", "!Q.U-J_D*", "ABC"},
                    Tolerance{"DelIsSkipped", "QU\x7fJD", "ABC"},
                    Tolerance{"ControlCharactersAreSkipped",
                              "\x01QUJ\x1f"
                              "D",
                              "ABC"},
                    Tolerance{"NothingButForeignCharacters", "====\n", ""},
                    Tolerance{"HighByteEndsTheText", "QUJD\x80REVG", "ABC"},
                    Tolerance{"HighestByteEndsTheText", "QUJDR\xffREVG", "ABC"},
                    Tolerance{"HighByteInAGroupEndsIt",
                              "QUI\xc3\xa4"
                              "D",
                              "AB"},
                    Tolerance{"HighByteFirstLeavesNothing", "\x80QUJD", ""},
                    Tolerance{"Empty", "", ""}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST(Base64Decode, NullGivesNothing) {
    ByteArray bytes;
    bytes.Add(7);
    EXPECT_EQ(CRFCBase64::Decode(nullptr, bytes), 0);
    EXPECT_EQ(bytes.GetSize(), 1);
    CString text("old");
    EXPECT_EQ(CRFCBase64::Decode(nullptr, text), 0);
    EXPECT_EQ(text, "");
    EXPECT_TRUE(CRFCBase64::Decode(nullptr).IsEmpty());
    EXPECT_TRUE(CRFCBase64::Decode(nullptr, 65001U).IsEmpty());
}

TEST(Base64Decode, AppendsToTheArrayAndCountsOnlyWhatItAppended) {
    ByteArray bytes;
    EXPECT_EQ(CRFCBase64::Decode("QUJD", bytes), 3);
    EXPECT_EQ(CRFCBase64::Decode("====", bytes), 0);
    EXPECT_EQ(CRFCBase64::Decode("REU=", bytes), 2);
    EXPECT_EQ(contentOf(bytes), "ABCDE");
}

TEST(Base64Decode, KeepsTheArraysStep) {
    struct OpenArray : ByteArray {
        using ByteArray::m_nGrowBy;
    } bytes;
    bytes.SetSize(1, 77);
    CRFCBase64::Decode("QUJD", bytes);
    EXPECT_EQ(bytes.m_nGrowBy, 77);
}

TEST(Base64Decode, LeavesNoMemoryBehindWhereNothingWasDecoded) {
    ByteArray bytes;
    EXPECT_EQ(CRFCBase64::Decode("=====\n\n\n\n", bytes), 0);
    EXPECT_EQ(bytes.GetData(), nullptr);
}

TEST(Base64Decode, IntoATextStopsAtTheFirstNulButCountsAllBytes) {
    CString text("what was there before is gone");
    EXPECT_EQ(CRFCBase64::Decode("QUIAQ0Q=", text), 5);
    EXPECT_EQ(textOf(text), "AB");
    EXPECT_EQ(CRFCBase64::Decode("QUJD", text), 3);
    EXPECT_EQ(textOf(text), "ABC");
}

TEST(Base64Decode, TheTextMayBeItsOwnSource) {
    CString text("QUJDREVG");
    EXPECT_EQ(CRFCBase64::Decode(text, text), 6);
    EXPECT_EQ(text, "ABCDEF");
}

TEST(Base64Decode, ToATextKeepsNuls) {
    EXPECT_EQ(textOf(CRFCBase64::Decode("QUIAQ0Q=")), std::string("AB\0CD", 5));
}

TEST(Base64Decode, FromACodePageEndsAtTheFirstNul) {
    EXPECT_EQ(textOf(CRFCBase64::Decode("QUIAQ0Q=", 65001U)), "AB");
    EXPECT_EQ(textOf(CRFCBase64::Decode("QUJD", 1252U)), "ABC");
    EXPECT_EQ(textOf(CRFCBase64::Decode("", 0U)), "");
    EXPECT_EQ(textOf(CRFCBase64::Decode("AA==", 0U)), "");
}

TEST(Base64Decode, EveryTextOfUpToThreeCharactersOfEveryKindFollowsTheRules) {
    constexpr std::string_view kinds = "Q/9=\n\x7f\x80";
    for (const char a : kinds) {
        for (const char b : kinds) {
            for (const char c : kinds) {
                for (const char d : kinds) {
                    const std::string text{a, b, c, d, 'U', 'J', 'D', 'R'};
                    for (std::size_t length = 0; length <= text.size(); ++length) {
                        const std::string part = text.substr(0, length);
                        ASSERT_EQ(decoded(part.c_str()), slowlyDecoded(part));
                    }
                }
            }
        }
    }
}

TEST(Base64Decode, RandomTextsFollowTheRules) {
    std::mt19937 random(randomSeed());
    constexpr std::string_view mostly =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (int round = 0; round < randomRounds(20000); ++round) {
        std::string text(random() % 200, '\0');
        const auto foreign = random() % 20 + 1;
        for (char& c : text) {
            c = random() % foreign != 0 ? mostly[random() % mostly.size()]
                                        : static_cast<char>(random() % 127 + 1);
        }
        if (random() % 8 == 0 && !text.empty()) text[random() % text.size()] = '\x80';
        ASSERT_EQ(decoded(text.c_str()), slowlyDecoded(text)) << "round " << round;
    }
}

TEST(Base64Decode, ALongTextTakesTimeInProportion) {
    const std::string bytes(3 << 20, 'x');
    EXPECT_EQ(decoded(encoded(bytes).c_str()), bytes);
}

}  // namespace
