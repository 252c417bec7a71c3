#include "NumberText.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>

#include "UException.h"
#include "failing_memory.h"
#include "m_type_conversion.h"
#include "record_log.h"
#include "row_name.h"
#include "text_of.h"

namespace {

class IsNumber : public testing::TestWithParam<std::pair<const char*, bool>> {};

TEST_P(IsNumber, IsDigitsAndMinusSignsAlone) {
    EXPECT_EQ(isNumber(GetParam().first), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IsNumber,
    testing::Values(std::pair{"42", true}, std::pair{" \t42\r\n", true}, std::pair{"-", true},
                    std::pair{"1-2", true}, std::pair{"--5", true}, std::pair{"-5", true},
                    std::pair{"5-", true}, std::pair{"", false}, std::pair{"  ", false},
                    std::pair{"4x", false}, std::pair{"x4", false}, std::pair{"+4", false},
                    std::pair{"4 2", false}, std::pair{"4.2", false}, std::pair{"0x10", false},
                    std::pair{"\xb2", false}, std::pair{static_cast<const char*>(nullptr), false},
                    std::pair{"99999999999999999999999999", true}));

template <class Number>
struct Reading {
    const char* text;
    Number value;  // 7 stands for the default
    bool ok;
};

// What a conversion with the default 7 gives, and with no place for the flag.
template <class Number, class Convert>
void expectReading(Convert convert, const Reading<Number>& reading) {
    for (const bool before : {false, true}) {
        bool ok = before;
        EXPECT_EQ(convert(reading.text, 7, &ok), reading.value) << reading.text;
        EXPECT_EQ(ok, reading.ok) << reading.text;
    }
    EXPECT_EQ(convert(reading.text, 7, nullptr), reading.value) << reading.text;
}

class ToInt : public testing::TestWithParam<Reading<int>> {};
TEST_P(ToInt, ReadsANumberOrGivesTheDefault) { expectReading(toInt, GetParam()); }
INSTANTIATE_TEST_SUITE_P(
    Rows, ToInt,
    testing::Values(
        Reading<int>{"  42 ", 42, true}, Reading<int>{"-42", -42, true},
        Reading<int>{"007", 7, true}, Reading<int>{"1-2", 1, true}, Reading<int>{"0", 0, true},
        Reading<int>{"5-", 5, true}, Reading<int>{"999999999", 999999999, true},
        Reading<int>{"1000000000", 1000000000, true}, Reading<int>{"0000000012", 12, true},
        Reading<int>{"123456789 ", 123456789, true}, Reading<int>{"123456789x", 7, false},
        Reading<int>{"-", 7, true}, Reading<int>{"--5", 7, true},
        Reading<int>{"2147483647", INT_MAX, true}, Reading<int>{"2147483648", INT_MAX, true},
        Reading<int>{"-2147483649", INT_MIN, true},
        Reading<int>{"99999999999999999999", INT_MAX, true}, Reading<int>{"4x", 7, false},
        Reading<int>{"", 7, false}, Reading<int>{nullptr, 7, false}, Reading<int>{"+4", 7, false}));

class ToInt64 : public testing::TestWithParam<Reading<long long>> {};
TEST_P(ToInt64, ReadsANumberOrGivesTheDefault) { expectReading(toINT64, GetParam()); }
INSTANTIATE_TEST_SUITE_P(
    Rows, ToInt64,
    testing::Values(Reading<long long>{" 42 ", 42, true},
                    Reading<long long>{"-9223372036854775808", LLONG_MIN, true},
                    Reading<long long>{"9223372036854775807", LLONG_MAX, true},
                    Reading<long long>{"9223372036854775808", LLONG_MAX, true},
                    Reading<long long>{"-9223372036854775809", LLONG_MIN, true},
                    Reading<long long>{"-", 0, true}, Reading<long long>{"5-6", 5, true},
                    Reading<long long>{"4x", 7, false}, Reading<long long>{nullptr, 7, false}));

using Unsigned64 = Reading<unsigned long long>;
class ToUint64 : public testing::TestWithParam<Unsigned64> {};
TEST_P(ToUint64, ReadsANumberOrGivesTheDefault) { expectReading(toUINT64, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Rows, ToUint64,
                         testing::Values(Unsigned64{" 42 ", 42, true},
                                         Unsigned64{"18446744073709551615", ULLONG_MAX, true},
                                         Unsigned64{"18446744073709551616", ULLONG_MAX, true},
                                         Unsigned64{"-1", ULLONG_MAX, true},
                                         Unsigned64{"-2", ULLONG_MAX - 1, true},
                                         Unsigned64{"-", 0, true}, Unsigned64{"4x", 7, false},
                                         Unsigned64{nullptr, 7, false}));

using Unsigned16 = Reading<unsigned short>;
class ToUint16 : public testing::TestWithParam<Unsigned16> {};
TEST_P(ToUint16, ReadsANarrowNumberOrGivesTheDefault) { expectReading(toUINT16, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Rows, ToUint16,
                         testing::Values(Unsigned16{" 42 ", 42, true},
                                         Unsigned16{"65535", 65535, true},
                                         Unsigned16{"65536", 7, false}, Unsigned16{"-1", 7, false},
                                         Unsigned16{"99999999999999999999", 7, false},
                                         Unsigned16{"4x", 7, false}, Unsigned16{"", 7, false},
                                         Unsigned16{nullptr, 7, false}));

using Dword = Reading<unsigned int>;
class ToDword : public testing::TestWithParam<Dword> {};
TEST_P(ToDword, ReadsADecimalOrHexadecimalNumberOrGivesTheDefault) {
    expectReading(toDWORD, GetParam());
}
INSTANTIATE_TEST_SUITE_P(Decimal, ToDword,
                         testing::Values(Dword{" 42 ", 42, true}, Dword{"0", 0, true},
                                         Dword{"4294967295", UINT_MAX, true},
                                         Dword{"00004294967", 4294967, true}, Dword{"1-2", 1, true},
                                         Dword{"-", 0, true}, Dword{"4294967296", 7, false},
                                         Dword{"-1", 7, false}, Dword{"000042949672", 7, false},
                                         Dword{"4x", 7, false}, Dword{"x4", 7, false},
                                         Dword{"ff", 7, false}, Dword{"abc", 7, false},
                                         Dword{"4 2", 7, false}, Dword{"", 7, false},
                                         Dword{" ", 7, false}, Dword{nullptr, 7, false}));
INSTANTIATE_TEST_SUITE_P(Hexadecimal, ToDword,
                         testing::Values(Dword{"0x1f", 0x1f, true}, Dword{" 0X1F ", 0x1f, true},
                                         Dword{"0x0", 0, true}, Dword{"0xffffffff", UINT_MAX, true},
                                         Dword{"0xdeadBEEF", 0xdeadbeef, true},
                                         Dword{"0x1fg", 0x1f, true}, Dword{"0x", 7, false},
                                         Dword{"0xg", 7, false}, Dword{"-0x1", 7, false},
                                         Dword{"00x1", 7, false}, Dword{"0x123456789", 7, false}));

class StrIpToDword : public testing::TestWithParam<Dword> {};
TEST_P(StrIpToDword, PutsTheFirstNumberInTheHighestByte) {
    expectReading(strIPtoDWORD, GetParam());
}
INSTANTIATE_TEST_SUITE_P(
    Rows, StrIpToDword,
    testing::Values(Dword{"1.2.3.4", 0x01020304, true}, Dword{"10.1.2.3", 0x0a010203, true},
                    Dword{" 255.255.255.255 ", UINT_MAX, true}, Dword{"0.0.0.0", 0, true},
                    Dword{"300.1.1.1", 0x2c010101, true}, Dword{"1.300.257.999", 0x012c01e7, true},
                    Dword{"001.002.003.004", 0x01020304, true},
                    Dword{"+1. 2.\t3.+4", 0x01020304, true}, Dword{"1.-2.3.4", 0x01fe0304, true},
                    Dword{"-1.2.3.4", 0xff020304, true}, Dword{"1 .2.3.4", 7, false},
                    Dword{"1.2.3", 7, false}, Dword{"1.2.3.", 7, false},
                    Dword{"1.2.3.4x", 7, false}, Dword{"1.2.3.4.5", 7, false},
                    Dword{"1.2.3.4 x", 7, false}, Dword{"1.2.3.4567", 7, false},
                    Dword{"1000.2.3.4", 7, false}, Dword{"a.b.c.d", 7, false},
                    Dword{"1,2,3,4", 7, false}, Dword{"", 7, false}, Dword{nullptr, 7, false}));

TEST(StrIpToDword, ReadsEveryThreeDigitNumberInEachPlace) {
    for (unsigned int number = 0; number < 1000; ++number) {
        for (int place = 0; place < 4; ++place) {
            std::string text;
            for (int i = 0; i < 4; ++i) {
                if (i > 0) text += '.';
                text += i == place ? std::to_string(number) : "1";
            }
            const unsigned int shift = static_cast<unsigned int>(24 - 8 * place);
            const unsigned int others = 0x01010101u & ~(0xffu << shift);
            EXPECT_EQ(strIPtoDWORD(text.c_str(), 7), others + ((number & 255) << shift)) << text;
        }
    }
}

TEST(IPv4ToString, PrintsTheLowestByteFirst) {
    EXPECT_EQ(textOf(IPv4toString(0x01020304)), "4.3.2.1");
    EXPECT_EQ(textOf(IPv4toString(0)), "0.0.0.0");
    EXPECT_EQ(textOf(IPv4toString(UINT_MAX)), "255.255.255.255");
    EXPECT_EQ(textOf(IPv4toString(0xfe000000)), "0.0.0.254");
}

TEST(ToBool, KnowsTwoWordsInEitherCase) {
    for (const char* text : {"true", "TRUE", " True\n", "tRuE"}) EXPECT_TRUE(toBool(text, false));
    for (const char* text : {"false", "FALSE", "\tFalse "}) EXPECT_FALSE(toBool(text, true));
}

TEST(ToBool, GivesTheDefaultForAnythingElse) {
    for (const char* text : {"yes", "1", "", "tru", "truee", "true false", "t\xd2ue",
                             static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(toBool(text, true));
        EXPECT_FALSE(toBool(text, false));
    }
}

struct Complaint {
    const char* rule;
    std::function<void()> act;
    const char* function;
    const char* message;
};
class Refusal : public testing::TestWithParam<Complaint> {};

TEST_P(Refusal, IsLoggedAsRaisedAndAsCaught) {
    const RecordLog log;
    GetParam().act();
    ASSERT_EQ(log.items().size(), 2u);
    EXPECT_EQ(withoutLine(log.items()[0]), std::string("1, /m_strings, LINE, ") +
                                               GetParam().function + ", " + GetParam().message +
                                               "\n");
    EXPECT_EQ(withoutLine(log.items()[1]),
              "1, /m_strings, LINE, , EXCEPTION caught: " + std::string(GetParam().message) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Refusal,
    testing::Values(Complaint{"BoolOfAnotherWord", [] { toBool("yes"); }, "toBool()",
                              "EXCEPTION - unknow value, expected 'true' or 'false'"},
                    Complaint{"DwordOfNull", [] { toDWORD(nullptr); }, "toDWORD()",
                              "EXCEPTION - a_str is NULL"},
                    Complaint{"DwordOfBlanks", [] { toDWORD("  "); }, "toDWORD()",
                              "EXCEPTION - a_str is empty string"},
                    Complaint{"DwordOfRubbish", [] { toDWORD("4x"); }, "toDWORD()",
                              "EXCEPTION - invalid a_str"},
                    Complaint{"DwordOfLongDecimal", [] { toDWORD("123456789012"); }, "toDWORD()",
                              "EXCEPTION - invalid a_str"},
                    Complaint{"DwordOfShortHexadecimal", [] { toDWORD("0x"); }, "toDWORD()",
                              "EXCEPTION - invalid a_str"},
                    Complaint{"DwordOfLongHexadecimal", [] { toDWORD("0x123456789"); }, "toDWORD()",
                              "EXCEPTION - invalid a_str"},
                    Complaint{"DwordOfElevenDigits", [] { toDWORD("99999999999"); }, "toDWORD()",
                              "EXCEPTION - out of range a_str"},
                    Complaint{"DwordOutOfRange", [] { toDWORD("-1"); }, "toDWORD()",
                              "EXCEPTION - out of range a_str"}),
    nameOfRow);

TEST(ToUint16, LogsThatANumberIsTooWide) {
    const RecordLog log;
    toUINT16("65536");
    ASSERT_EQ(log.items().size(), 2u);
    EXPECT_EQ(
        withoutLine(log.items()[0]),
        "1, /m_type_conversion.h, LINE, UINT64ToUINT16(), EXCEPTION - UINT64ToUINT16(), input "
        "value is greater then UINT16_MAX\n");
    EXPECT_EQ(
        withoutLine(log.items()[1]),
        "1, /m_strings, LINE, , EXCEPTION caught: EXCEPTION - UINT64ToUINT16(), input value is "
        "greater then UINT16_MAX\n");
}

TEST(NumberText, RefusesOtherTextsSilently) {
    const RecordLog log;
    isNumber("x");
    toInt("x");
    toINT64("x");
    toUINT64("x");
    toUINT16("x");
    strIPtoDWORD("x");
    EXPECT_TRUE(log.items().empty());
}

struct Unexpected {
    const char* rule;
    std::function<void()> act;
    const char* marker;
};
class UnexpectedFailure : public testing::TestWithParam<Unexpected> {};

TEST_P(UnexpectedFailure, IsLoggedUnderTheOperationsMarker) {
    const RecordLog log;
    {
        // There is no memory for what is to be raised.
        const FailingAllocation failing(1);
        GetParam().act();
    }
    ASSERT_FALSE(log.items().empty());
    EXPECT_EQ(withoutLine(log.items().back()),
              std::string("1, /m_strings, LINE, , EXCEPTION caught: ") + GetParam().marker + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnexpectedFailure,
    testing::Values(
        Unexpected{"Bool", [] { EXPECT_TRUE(toBool("yes", true)); }, "toInt() - EXCEPTION"},
        Unexpected{"Dword", [] { EXPECT_EQ(toDWORD("x", 7), 7u); }, "toDWORD() - EXCEPTION"},
        Unexpected{"Uint16", [] { EXPECT_EQ(toUINT16("65536", 7), 7); }, "toUINT16() - EXCEPTION"}),
    nameOfRow);

struct Narrowing {
    const char* rule;
    std::function<long long()> narrow;
    long long result;
    const char* function = nullptr;  // of the exception, if there is one
    const char* message = nullptr;
};
class Narrow : public testing::TestWithParam<Narrowing> {};

TEST_P(Narrow, ChecksTheRange) {
    const RecordLog log;
    try {
        EXPECT_EQ(GetParam().narrow(), GetParam().result);
        EXPECT_EQ(GetParam().function, nullptr);
    } catch (const UException& e) {
        ASSERT_NE(GetParam().function, nullptr);
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetFunctionName(), GetParam().function);
        EXPECT_STREQ(e.GetFileName(), "/m_type_conversion.h");
        EXPECT_EQ(e.GetErrorMessage(),
                  "EXCEPTION - " + std::string(GetParam().function) + ", " + GetParam().message);
    }
}

constexpr char kNegative[] = "input value is negative";

INSTANTIATE_TEST_SUITE_P(
    Rows, Narrow,
    testing::Values(Narrowing{"Uint32OfZero", [] { return IntToUINT32(0); }, 0},
                    Narrowing{"Uint32OfMost", [] { return IntToUINT32(INT_MAX); }, INT_MAX},
                    Narrowing{"Uint32OfNegative", [] { return IntToUINT32(-1); }, 0,
                              "IntToUINT32()", kNegative},
                    Narrowing{"Uint16OfMost", [] { return UINT64ToUINT16(65535); }, 65535},
                    Narrowing{"Uint16OfMore", [] { return UINT64ToUINT16(65536); }, 0,
                              "UINT64ToUINT16()", "input value is greater then UINT16_MAX"},
                    Narrowing{"Int32OfMost", [] { return INT64ToINT32(INT_MAX); }, INT_MAX},
                    Narrowing{"Int32OfLeast", [] { return INT64ToINT32(INT_MIN); }, INT_MIN},
                    Narrowing{"Int32OfMore", [] { return INT64ToINT32(INT_MAX + 1LL); }, 0,
                              "INT64ToINT32()", "input value is greater then INT32_MAX"},
                    Narrowing{"Int32OfLess", [] { return INT64ToINT32(INT_MIN - 1LL); }, 0,
                              "INT64ToINT32()", "input value is less then INT32_MIN"},
                    Narrowing{"ByteOfZero", [] { return IntToBYTE(0); }, 0},
                    Narrowing{"ByteOfMost", [] { return IntToBYTE(255); }, 255},
                    Narrowing{"ByteOfNegative", [] { return IntToBYTE(-1); }, 0, "IntToDWORD()",
                              kNegative},
                    Narrowing{"ByteOfMore", [] { return IntToBYTE(256); }, 0, "IntToDWORD()",
                              "input value is greater then BYTE_MAX"}),
    nameOfRow);

}  // namespace
