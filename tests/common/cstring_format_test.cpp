// Formatting: the estimate that sizes the buffer, and what is written into it.

#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "CString.h"
#include "text_of.h"

namespace {

// Formats that compilers warn of are what these tests are about: they pass through a plain variadic
// function, which hides them.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void formatInto(CString& s, const char* format, ...) {
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
}

template <typename... Args>
CString formatted(const char* format, Args... args) {
    CString s;
    formatInto(s, format, args...);
    return s;
}

#define EXPECT_FORMAT(estimate, text, ...)                            \
    do {                                                              \
        const CString result = formatted(__VA_ARGS__);                \
        EXPECT_EQ(textOf(result), text) << #__VA_ARGS__;              \
        EXPECT_EQ(result.GetAllocLength(), estimate) << #__VA_ARGS__; \
    } while (false)

const char* const kNull = nullptr;

TEST(CStringFormat, PlainTextAndDoubledPercentCountTheirCharacters) {
    EXPECT_FORMAT(5, "plain", "plain");
    EXPECT_FORMAT(5, "100 %", "100 %%");
    EXPECT_FORMAT(2, "%%", "%%%%");
    EXPECT_FORMAT(0, "", "");
}

TEST(CStringFormat, NullFormatGivesTheEmptyText) { EXPECT_FORMAT(0, "", kNull); }

TEST(CStringFormat, LoneTrailingPercentIsRefused) { EXPECT_FORMAT(3, "", "abc%"); }

TEST(CStringFormat, TextCountsItsLengthAndAtLeastOne) {
    EXPECT_FORMAT(3, "abc", "%s", "abc");
    EXPECT_FORMAT(1, "", "%s", "");
    EXPECT_FORMAT(1, "", "%-s", "");
    EXPECT_FORMAT(5, "<abc>", "<%s>", "abc");
}

TEST(CStringFormat, NullTextCountsSix) {
    EXPECT_FORMAT(6, "(null)", "%s", kNull);
    EXPECT_FORMAT(6, "(null)", "%-s", kNull);
    EXPECT_FORMAT(8, "  (null)", "%8s", kNull);
}

TEST(CStringFormat, TextIsRaisedToItsWidthAndLoweredToItsPrecision) {
    EXPECT_FORMAT(6, "   abc", "%6s", "abc");
    EXPECT_FORMAT(6, "abc   ", "%-6s", "abc");
    EXPECT_FORMAT(6, "abcdef", "%3s", "abcdef");
    EXPECT_FORMAT(2, "ab", "%.2s", "abcdef");
    EXPECT_FORMAT(2, "  ", "%4.2s", "abcdef");
    EXPECT_FORMAT(0, "", "%.0s", "abc");
}

TEST(CStringFormat, PrecisionIsThePromiseThatNothingBehindItIsRead) {
    const char text[3] = {'a', 'b', 'c'};
    EXPECT_FORMAT(3, "abc", "%.3s", static_cast<const char*>(text));
    EXPECT_FORMAT(2, "ab", "%.*s", 2, static_cast<const char*>(text));
}

TEST(CStringFormat, CharacterCountsTwo) {
    EXPECT_FORMAT(2, "x", "%c", 'x');
    EXPECT_FORMAT(5, "    x", "%5c", 'x');
    EXPECT_FORMAT(1, "x", "%.1c", 'x');
    EXPECT_FORMAT(2, "x", "%C", L'x');
}

TEST(CStringFormat, NulCharacterEndsTheText) {
    EXPECT_FORMAT(4, "a", "a%cb", '\0');
    EXPECT_FORMAT(36, "a", "a%cb%d", '\0', 5);
    EXPECT_FORMAT(5, "a  ", "a%3cb", '\0');
}

TEST(CStringFormat, IntegersCountThirtyTwoOrWidthAndPrecision) {
    EXPECT_FORMAT(32, "-5", "%d", -5);
    EXPECT_FORMAT(32, "-2147483648", "%d", INT_MIN);
    EXPECT_FORMAT(32, "-5", "%i", -5);
    EXPECT_FORMAT(32, "17", "%o", 15);
    EXPECT_FORMAT(32, "4294967295", "%u", UINT_MAX);
    EXPECT_FORMAT(32, "ff", "%x", 255);
    EXPECT_FORMAT(32, "FF", "%X", 255);
    EXPECT_FORMAT(32, "-9223372036854775808", "%ld", LONG_MIN);
    EXPECT_FORMAT(32, "-5", "%hd", -5);
    EXPECT_FORMAT(40, std::string(39, ' ') + "7", "%40d", 7);
    EXPECT_FORMAT(70, std::string(10, ' ') + std::string(29, '0') + "7", "%40.30d", 7);
}

TEST(CStringFormat, StarTakesItsNumberFromTheList) {
    EXPECT_FORMAT(40, std::string(39, ' ') + "7", "%*d", 40, 7);
    EXPECT_FORMAT(45, std::string(44, '0') + "7", "%.*d", 45, 7);
    EXPECT_FORMAT(6, "   abc", "%*s", 6, "abc");
    EXPECT_FORMAT(1, " ", "%*.*s", 3, 1, "abc");
}

TEST(CStringFormat, NegativeWidthFromTheListCountsAsWritten) {
    // The text would be padded to eight: the estimate does not know that.
    EXPECT_FORMAT(3, "abc", "%*s", -8, "abc");
}

TEST(CStringFormat, NegativePrecisionFromTheListIsNone) {
    EXPECT_FORMAT(3, "abc", "%.*s", -1, "abc");
    EXPECT_FORMAT(32, "7", "%.*d", INT_MIN, 7);
}

TEST(CStringFormat, FlagsAreSkippedAndHashAddsTwo) {
    EXPECT_FORMAT(32, "+7", "%+d", 7);
    EXPECT_FORMAT(32, " 7", "% d", 7);
    EXPECT_FORMAT(32, "0007", "%04d", 7);
    EXPECT_FORMAT(34, "0xff", "%#x", 255);
    EXPECT_FORMAT(34, "0xff  ", "%-#6x", 255);
    EXPECT_FORMAT(36, "0xff", "%##x", 255);
}

TEST(CStringFormat, FloatingPointCountsOneHundredAndTwentyEight) {
    EXPECT_FORMAT(128, "1.500000", "%f", 1.5);
    EXPECT_FORMAT(128, "1.500000", "%lf", 1.5);
    EXPECT_FORMAT(128, "1.5", "%g", 1.5);
    EXPECT_FORMAT(128, "1.5", "%G", 1.5);
    EXPECT_FORMAT(128, "1.500000e+00", "%e", 1.5);
    EXPECT_FORMAT(128, "1.500000", "%Lf", 1.5L);
    EXPECT_FORMAT(140, std::string(139, ' ') + "2", "%140.0f", 2.0);
    EXPECT_FORMAT(128, std::to_string(1e200).substr(0, 128), "%f", 1e200);
}

TEST(CStringFormat, PointerCountsThirtyTwo) {
    EXPECT_FORMAT(32, "0x10", "%p", reinterpret_cast<void*>(0x10));
}

TEST(CStringFormat, CountConversionTakesItsPointerAndCountsNothing) {
    int count = -1;
    EXPECT_FORMAT(4, "ab:c", "ab%n:%s", &count, "c");
    EXPECT_EQ(count, 2);
}

TEST(CStringFormat, SecondSizeLetterIsReadAsTheConversion) {
    EXPECT_FORMAT(1, "1", "%lld", 123456LL);
    EXPECT_FORMAT(3, "x12", "x%lldy", 123456LL);
    EXPECT_FORMAT(1, "2", "%hhu", 25);
    EXPECT_FORMAT(1, "7", "%zu", std::size_t{77});
    EXPECT_FORMAT(1, "7", "%jd", std::intmax_t{77});
    EXPECT_FORMAT(1, "7", "%td", std::ptrdiff_t{77});
}

TEST(CStringFormat, SizeLettersOfLongNumbersAreSkipped) {
    EXPECT_FORMAT(128, "1.5", "%Lg", 1.5L);
    EXPECT_FORMAT(32, "123456", "%Ld", 123456LL);
    // No conversion of printf's: what it makes of that is its own affair.
    EXPECT_EQ(formatted("%Nd", 5).GetAllocLength(), 32);
}

TEST(CStringFormat, QIsCountedAsAnInteger) {
    EXPECT_FORMAT(33, "9223372036854775807", "%qd", LLONG_MAX);
    EXPECT_FORMAT(33, "18446744073709551615", "%qu", ULLONG_MAX);
}

TEST(CStringFormat, ConversionsThatTheEstimateDoesNotKnowCountNothing) {
    EXPECT_FORMAT(0, "", "%ls", L"wide");
    EXPECT_FORMAT(0, "", "%S", L"wide");
    EXPECT_FORMAT(0, "", "%lc", L'w');
    EXPECT_FORMAT(0, "", "%hs", "abc");
    EXPECT_FORMAT(0, "", "%hc", 'c');
    EXPECT_FORMAT(2, "", "%#hs", "");
    EXPECT_FORMAT(0, "", "%E", 1.5);
    EXPECT_FORMAT(0, "", "%a", 1.5);
    EXPECT_FORMAT(0, "", "%m");
}

TEST(CStringFormat, ArgumentBehindAConversionOfUnknownLengthIsReadAsItsOwnType) {
    EXPECT_FORMAT(5, "12345", "%lld %s", 123456LL, "abc");
    EXPECT_FORMAT(7, "1 abc  ", "%lld %s  ", 1LL, "abc");
    EXPECT_FORMAT(132, "1.500000 abc", "%Lf %s", 1.5L, "abc");
    EXPECT_FORMAT(4, " abc", "%ls %s", L"", "abc");
}

TEST(CStringFormat, LettersThatSwallowTheNextConversionNeverReadAPointerTooMany) {
    // The estimate takes 's' for the conversion of "%F s" and the like; printf took a number.
    EXPECT_FORMAT(6, "1.5000", "%Fs", 1.5);
    EXPECT_FORMAT(1, "1", "%F%s", 1.5, "x");
}

TEST(CStringFormat, PositionalArgumentsAreNeverReadAsPointers) {
    EXPECT_FORMAT(1, "a", "%1$s", "abc");
    EXPECT_FORMAT(3, "b a", "%2$s %1$s", "a", "b");
}

TEST(CStringFormat, NumbersBeyondIntAreClampedAndRefusedBeforeAnythingChanges) {
    CString s("before");
    EXPECT_THROW(formatInto(s, "%99999999999d%99999999999d", 1, 2), std::length_error);
    EXPECT_THROW(formatInto(s, "%2147483647.2147483647d", 1), std::length_error);
    EXPECT_EQ(textOf(s), "before");
}

TEST(CStringFormat, ReusesABlockWithRoomAndOtherwiseTakesTheEstimate) {
    CString s;
    const char* const block = s.GetBuffer(100);
    s.Format("%d", 5);
    EXPECT_EQ(static_cast<const char*>(s), block);
    EXPECT_EQ(s.GetAllocLength(), 100);
    EXPECT_EQ(textOf(s), "5");
}

TEST(CStringFormat, IsCutAtTheEstimateInABlockWithRoomToo) {
    CString s;
    s.GetBuffer(100);
    formatInto(s, "%lld", 123456LL);
    EXPECT_EQ(textOf(s), "1");
}

TEST(CStringFormat, NeverTakesABlockSmallerThanTheOldText) {
    CString s("a text of twenty six bytes");
    const CString other(s);
    s.Format("%s", "ab");
    EXPECT_EQ(s.GetAllocLength(), 26);
    EXPECT_EQ(textOf(s), "ab");
    EXPECT_EQ(textOf(other), "a text of twenty six bytes");
}

TEST(CStringFormat, OfTheOwnTextIsSafe) {
    for (const int room : {0, 100}) {
        for (const char* const format : {"<%s|%s>", "<%2s|%s>"}) {
            CString s("abc");
            s.GetBuffer(room);
            const char* const own = s;
            formatInto(s, format, own, own);
            EXPECT_EQ(textOf(s), "<abc|abc>");
        }
        CString s("a%sb%s");
        s.GetBuffer(room);
        const char* const own = s;
        formatInto(s, own, own, "x");
        EXPECT_EQ(textOf(s), "aa%sb%sbx");
    }
}

TEST(CStringFormat, HasNoLimitToTheNumberOfConversions) {
    const char* const format = "%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s%d%s";
    EXPECT_FORMAT(32 * 13 + 13, "1a2b3c4d5e6f7g8h9i10j11k12l13m", format, 1, "a", 2, "b", 3, "c", 4,
                  "d", 5, "e", 6, "f", 7, "g", 8, "h", 9, "i", 10, "j", 11, "k", 12, "l", 13, "m");
}

TEST(CStringFormat, WritesAMegabyteText) {
    const std::string big(1 << 20, 'x');
    const CString s = formatted("[%s]", big.c_str());
    EXPECT_EQ(textOf(s), "[" + big + "]");
    EXPECT_EQ(s.GetAllocLength(), (1 << 20) + 2);
}

}  // namespace
