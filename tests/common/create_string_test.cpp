#include "createString.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <string>

#include "text_of.h"

namespace {

const char* const kNull = nullptr;

TEST(SFormat, FormatsWithinTheEstimate) {
    EXPECT_EQ(textOf(SFormat("%d-%s", 5, "x")), "5-x");
    EXPECT_EQ(textOf(SFormat("%lld", 123456LL)), "1");
}

TEST(SFormat, NullFormatGivesTheEmptyText) { EXPECT_EQ(textOf(SFormat(kNull)), ""); }

TEST(CreateString, PointersShowAsHexadecimal) {
    EXPECT_EQ(textOf(createString(static_cast<const void*>(nullptr))), "0x0000000000000000");
    EXPECT_EQ(textOf(createString(reinterpret_cast<const void*>(0xAB))), "0xab");
}

TEST(CreateString, OfAStringIsACopy) {
    const CString text("a\0b", 3);
    EXPECT_EQ(textOf(createString(text)), textOf(text));
}

TEST(CreateString, TakesTheFirstBytesUpToANul) {
    EXPECT_EQ(textOf(createString("abcdef", 3, "")), "abc");
    EXPECT_EQ(textOf(createString("abcdef", 99, "")), "abcdef");
    EXPECT_EQ(textOf(createString("ab\0def", 6, "")), "ab");
    EXPECT_EQ(textOf(createString("abcdef", -1, "")), "abcdef");
    EXPECT_EQ(textOf(createString("abcdef", -7, "")), "abcdef");
    EXPECT_EQ(textOf(createString("abcdef")), "abcdef");
}

TEST(CreateString, LengthOfZeroMeansTheWholeText) {
    EXPECT_EQ(textOf(createString("abcdef", 0, "x")), "abcdef");
}

TEST(CreateString, NullTextGivesTheFallback) {
    EXPECT_EQ(textOf(createString(kNull, 3, "dflt")), "dflt");
    EXPECT_EQ(textOf(createString(kNull, -1, kNull)), "");
    EXPECT_EQ(textOf(createString(kNull)), "");
    EXPECT_EQ(textOf(createString("", -1, "dflt")), "");
}

TEST(CreateString, LeadingNumberIsNotUsed) {
    EXPECT_EQ(textOf(createString(65001U, "abcdef", 3, "")), "abc");
    EXPECT_EQ(textOf(createString(0U, kNull, 3, "dflt")), "dflt");
}

TEST(CreateString, NumbersShowInDecimal) {
    EXPECT_EQ(textOf(createString(static_cast<short>(SHRT_MIN))), "-32768");
    EXPECT_EQ(textOf(createString(INT_MIN)), "-2147483648");
    EXPECT_EQ(textOf(createString(INT_MAX)), "2147483647");
    EXPECT_EQ(textOf(createString(static_cast<unsigned char>(255))), "255");
    EXPECT_EQ(textOf(createString(static_cast<unsigned short>(USHRT_MAX))), "65535");
    EXPECT_EQ(textOf(createString(UINT_MAX)), "4294967295");
    EXPECT_EQ(textOf(createString(LLONG_MIN)), "-9223372036854775808");
    EXPECT_EQ(textOf(createString(ULLONG_MAX)), "18446744073709551615");
    EXPECT_EQ(textOf(createString(0)), "0");
}

TEST(CreateString, LongNumbersShowTheirLow32Bits) {
    EXPECT_EQ(textOf(createString(5000000000L)), "705032704");
    EXPECT_EQ(textOf(createString(-5L)), "-5");
    EXPECT_EQ(textOf(createString(0x80000000L)), "-2147483648");
    EXPECT_EQ(textOf(createString(5000000000UL)), "705032704");
    EXPECT_EQ(textOf(createString(ULONG_MAX)), "4294967295");
}

TEST(CreateString, FloatingPointShowsSixDecimalsCutAt128Characters) {
    EXPECT_EQ(textOf(createString(1.5F)), "1.500000");
    EXPECT_EQ(textOf(createString(-0.1)), "-0.100000");
    EXPECT_EQ(textOf(createString(DBL_MAX)), std::to_string(DBL_MAX).substr(0, 128));
}

TEST(CreateString, BoolAndCharacterShowAsThemselves) {
    EXPECT_EQ(textOf(createString(true)), "true");
    EXPECT_EQ(textOf(createString(false)), "false");
    EXPECT_EQ(textOf(createString('x')), "x");
    EXPECT_EQ(textOf(createString('\0')), "");
}

TEST(CreateString, StandardStringsEndAtTheirFirstNul) {
    EXPECT_EQ(textOf(createString(std::string("ab\0c", 4))), "ab");
}

TEST(CreateStringLimit, TakesAtMostTheLimit) {
    EXPECT_EQ(textOf(createStringLimit("abcdef", 3)), "abc");
    EXPECT_EQ(textOf(createStringLimit("abc", 99)), "abc");
    EXPECT_EQ(textOf(createStringLimit(kNull, 3)), "");
}

TEST(CreateStringLimit, OfZeroOrLessGivesTheWholeText) {
    EXPECT_EQ(textOf(createStringLimit("abcdef", 0)), "abcdef");
    EXPECT_EQ(textOf(createStringLimit("abcdef", -1)), "abcdef");
    EXPECT_EQ(textOf(createStringLimit("", 5)), "");
}

TEST(AddToString, AppendsNumbersAndTextsAndGivesTheTarget) {
    CString text("x");
    EXPECT_EQ(&addToString(text, -5), &text);
    addToString(text, "|");
    addToString(text, 7U);
    addToString(text, CString("|"));
    addToString(text, ULLONG_MAX);
    addToString(text, kNull);
    addToString(text, static_cast<unsigned char>(200));
    EXPECT_EQ(textOf(text), "x-5|7|18446744073709551615200");
    EXPECT_EQ(textOf(addToString(text, INT_MIN)), "x-5|7|18446744073709551615200-2147483648");
}

TEST(ToHex, ShowsThePrefixAndLowerCaseDigits) {
    EXPECT_EQ(textOf(toHex(0)), "0x0");
    EXPECT_EQ(textOf(toHex(0xABCDEF)), "0xabcdef");
    EXPECT_EQ(textOf(toHex(ULLONG_MAX)), "0xffffffffffffffff");
}

}  // namespace
