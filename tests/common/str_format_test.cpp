#include "StrFormat.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>

#include "random_seed.h"
#include "text_of.h"

namespace {

const char* const kNull = nullptr;

std::string textOf(const StrFormat& format) { return static_cast<const char*>(format); }

TEST(StrFormat, ValuesFillPlaceholdersInAscendingOrderOfTheirNumbers) {
    EXPECT_EQ(textOf(StrFormat("%1 of %2").arg(3).arg(7)), "3 of 7");
    EXPECT_EQ(textOf(StrFormat("%2 of %1").arg(3).arg(7)), "7 of 3");
    EXPECT_EQ(textOf(StrFormat("%9 %0 %5").arg("a").arg("b").arg("c")), "c a b");
}

TEST(StrFormat, OneValueFillsEveryPlaceOfItsNumber) {
    EXPECT_EQ(textOf(StrFormat("%1-%1").arg("x")), "x-x");
    EXPECT_EQ(textOf(StrFormat("%1%1%2%1").arg("long text").arg("")),
              "long textlong textlong text");
    EXPECT_EQ(textOf(StrFormat("%1%1").arg("")), "");
}

TEST(StrFormat, OnlyOneDigitCounts) {
    EXPECT_EQ(textOf(StrFormat("%12").arg("x")), "x2");
    EXPECT_EQ(textOf(StrFormat("%10%2").arg("x").arg("y")), "x0y");
}

TEST(StrFormat, DoubledPercentIsALiteralOne) {
    EXPECT_EQ(textOf(StrFormat("100%% of %1").arg("50%")), "100% of 50%");
    EXPECT_EQ(textOf(StrFormat("%%1 %1").arg("x")), "%1 x");
    EXPECT_EQ(textOf(StrFormat("%%%1").arg("x")), "%x");
    EXPECT_EQ(textOf(StrFormat("%%%%")), "%%");
}

TEST(StrFormat, OtherPercentSignsStandAsTheyAre) {
    EXPECT_EQ(textOf(StrFormat("%x %1 %").arg("y")), "%x y %");
    EXPECT_EQ(textOf(StrFormat("%")), "%");
    EXPECT_EQ(textOf(StrFormat("%x%1").arg("")), "%x");
}

TEST(StrFormat, UnfilledPlaceholdersStandAsTheyAre) {
    EXPECT_EQ(textOf(StrFormat("%1 of %2").arg(3)), "3 of %2");
    EXPECT_EQ(textOf(StrFormat("%1")), "%1");
}

TEST(StrFormat, TextOfAValueIsNeverAPlaceholder) {
    EXPECT_EQ(textOf(StrFormat("%1 %2").arg("%2").arg("x")), "%2 x");
    EXPECT_EQ(textOf(StrFormat("%1%2").arg("%").arg("1")), "%1");
    EXPECT_EQ(textOf(StrFormat("%1").arg("%%").arg("x")), "%%");
}

TEST(StrFormat, ValueWithoutAPlaceIsDropped) {
    EXPECT_EQ(textOf(StrFormat("Failed").arg(5)), "Failed");
    EXPECT_EQ(textOf(StrFormat("%1").arg("a").arg("b")), "a");
}

TEST(StrFormat, ValueWithoutAPlaceIsAppendedOnDemand) {
    StrFormat format("%1");
    format.AppendIfNoPlaceholder(true);
    EXPECT_EQ(textOf(format.arg("a").arg("50%").arg("")), "a, 50%, ");
    format.AppendIfNoPlaceholder(false);
    EXPECT_EQ(textOf(format.arg("x")), "a, 50%, ");
}

TEST(StrFormat, TextReadBeforeAnAppendStaysAsItWasRead) {
    StrFormat format("Failed");
    format.AppendIfNoPlaceholder(true);
    EXPECT_EQ(textOf(format), "Failed");
    EXPECT_EQ(textOf(format.arg(5)), "Failed");
    EXPECT_EQ(textOf(StrFormat(format)), "Failed, 5");
}

TEST(StrFormat, ComparingCountsAsReading) {
    StrFormat format("50%%");
    format.AppendIfNoPlaceholder(true);
    EXPECT_TRUE(format == "50%");
    EXPECT_TRUE(format.arg(5) == "50%");

    StrFormat source("50%%");
    StrFormat target("50%%");
    for (StrFormat* const compared : {&source, &target}) compared->AppendIfNoPlaceholder(true);
    target = source;
    EXPECT_EQ(textOf(target.arg(5)), "50%");
    EXPECT_EQ(textOf(source.arg(5)), "50%");
}

TEST(StrFormat, EmptyTextReadBeforeAnAppendIsReadAgain) {
    StrFormat format("");
    format.AppendIfNoPlaceholder(true);
    EXPECT_EQ(textOf(format), "");
    EXPECT_EQ(textOf(format.arg(5)), ", 5");
}

TEST(StrFormat, TextReadBeforeReplacingByDigitStaysUntilTheNextValue) {
    StrFormat format("%1 %2");
    EXPECT_EQ(textOf(format), "%1 %2");
    format.ReplacePositionalArgs(1, "a");
    EXPECT_EQ(textOf(format), "%1 %2");
    EXPECT_EQ(textOf(format.arg("b")), "a b");
}

TEST(StrFormat, TextReadBetweenValuesShowsTheLaterOnes) {
    StrFormat format("%1 %2");
    EXPECT_EQ(textOf(format), "%1 %2");
    EXPECT_EQ(textOf(format.arg("a")), "a %2");
    EXPECT_EQ(textOf(format.arg("b")), "a b");
}

TEST(StrFormat, ArgTakesEveryKindOfValue) {
    EXPECT_EQ(textOf(StrFormat("%1").arg(CString("text"))), "text");
    EXPECT_EQ(textOf(StrFormat("%1").arg("text")), "text");
    EXPECT_EQ(textOf(StrFormat("<%1>").arg(kNull)), "<>");
    EXPECT_EQ(textOf(StrFormat("%1").arg(INT_MIN)), "-2147483648");
    EXPECT_EQ(textOf(StrFormat("%1").arg(UINT_MAX)), "4294967295");
    EXPECT_EQ(textOf(StrFormat("%1").arg(5000000000L)), "705032704");
    EXPECT_EQ(textOf(StrFormat("%1").arg(static_cast<unsigned char>(200))), "200");
    EXPECT_EQ(textOf(StrFormat("%1").arg(true)), "true");
    EXPECT_EQ(textOf(StrFormat("%1").arg('c')), "c");
    EXPECT_EQ(textOf(StrFormat("%1").arg(-1LL)), "-1");
    EXPECT_EQ(textOf(StrFormat("%1").arg(1.5)), "1.500000");
    EXPECT_EQ(textOf(StrFormat("%1").arg(std::string("text"))), "text");
    EXPECT_EQ(textOf(StrFormat("%1").arg(StrFormat("%1").arg("in"))), "in");
    char array[] = "array";
    EXPECT_EQ(textOf(StrFormat("%1").arg(array)), "array");
}

TEST(StrFormat, ArgHexShowsThePrefix) {
    EXPECT_EQ(textOf(StrFormat("%1 %2").argHex(0).argHex(ULLONG_MAX)), "0x0 0xffffffffffffffff");
}

TEST(StrFormat, NullTemplatesAreEmpty) {
    EXPECT_EQ(textOf(StrFormat(kNull)), "");
    EXPECT_EQ(textOf(StrFormat(static_cast<const wchar_t*>(nullptr))), "");
}

TEST(StrFormat, TemplateMayBeAStringOrWide) {
    const CString text("%1!");
    EXPECT_EQ(textOf(StrFormat(text).arg("a")), "a!");
    EXPECT_EQ(::textOf(text), "%1!");
    EXPECT_EQ(textOf(StrFormat(L"%1!").arg("a")), "a!");
}

TEST(StrFormat, TextBehindANulOfAValueIsKeptAndNeverAPlaceholder) {
    StrFormat format("%1|%2");
    format.arg(CString("a\0%0", 4));
    EXPECT_EQ(textOf(format), "a");
    const StrFormat::Placeholder next = format.FindArgEscapes();
    EXPECT_EQ(next.digit, 2);
    EXPECT_EQ(next.count, 1);
}

TEST(StrFormat, FindArgEscapesGivesTheLowestDigitAndItsCount) {
    const struct {
        const char* text;
        int digit;
        int count;
    } rows[] = {{"", INT_MAX, 0},   {"no %% here %", INT_MAX, 0},
                {"%2 %1 %1", 1, 2}, {"%%1 %3", 3, 1},
                {"%a%9", 9, 1},     {"%0", 0, 1}};
    for (const auto& row : rows) {
        const auto [digit, count] = StrFormat(row.text).FindArgEscapes();
        EXPECT_EQ(digit, row.digit) << row.text;
        EXPECT_EQ(count, row.count) << row.text;
    }
}

TEST(StrFormat, ReplacePositionalArgsReplacesEveryPlaceOfTheDigitAsGiven) {
    StrFormat format("%2 %1 %2 %%2");
    format.ReplacePositionalArgs(2, "x%%");
    EXPECT_EQ(textOf(format), "x% %1 x% %2");
    format.ReplacePositionalArgs(7, "unused");
    EXPECT_EQ(textOf(StrFormat(format)), "x% %1 x% %2");
}

TEST(StrFormat, ReplaceArgEscapesGivesTheObjectItself) {
    StrFormat format("%1%2");
    EXPECT_EQ(&format.ReplaceArgEscapes("a"), &format);
    EXPECT_EQ(&format.arg("b"), &format);
}

TEST(StrFormat, CopyTakesTheTemplateButNotTheFlag) {
    StrFormat format("%1 %2");
    format.AppendIfNoPlaceholder(true);
    format.arg("a");
    StrFormat copy(format);
    EXPECT_EQ(textOf(copy.arg("b").arg("dropped")), "a b");
    EXPECT_EQ(textOf(format), "a %2");
}

TEST(StrFormat, AssignmentTakesTheTemplateButNotTheFlag) {
    StrFormat source("%1 %2");
    source.AppendIfNoPlaceholder(true);
    StrFormat target("old");
    EXPECT_EQ(textOf(target), "old");
    target = source;
    EXPECT_EQ(textOf(target.arg("a").arg("b").arg("dropped")), "a b");

    StrFormat keepsItsFlag("old");
    keepsItsFlag.AppendIfNoPlaceholder(true);
    keepsItsFlag = source;
    EXPECT_EQ(textOf(keepsItsFlag.arg("a").arg("b").arg("c")), "a b, c");
}

TEST(StrFormat, AssignmentForgetsWhatWasRead) {
    for (const char* const old : {"old", "100%% old"}) {
        StrFormat target(old);
        EXPECT_NE(textOf(target), "new");
        target = StrFormat("new");
        EXPECT_EQ(textOf(target), "new") << old;
    }
}

TEST(StrFormat, AssignmentOfTheSameFinishedTextDoesNothing) {
    // Both read "5%1", but only the source has a place left.
    StrFormat source("5%1");
    StrFormat target("5%%1");
    target = source;
    EXPECT_EQ(textOf(target.arg("x")), "5%1");
    const StrFormat& self = source;
    source = self;
    EXPECT_EQ(textOf(source.arg("x")), "5x");
}

TEST(StrFormat, EqualsItsFinishedText) {
    EXPECT_TRUE(StrFormat("%1%%").arg(5) == "5%");
    EXPECT_FALSE(StrFormat("%1%%").arg(5) == "5%%");
    EXPECT_TRUE(StrFormat("") == kNull);
}

TEST(StrFormat, ItsOwnTextMayBeAValue) {
    StrFormat format("<%1|%2>");
    format.arg(static_cast<const char*>(format));
    EXPECT_EQ(textOf(format), "<<%1|%2>|%2>");
    EXPECT_EQ(textOf(format.arg(static_cast<const char*>(format))), "<<%1|%2>|<<%1|%2>|%2>>");
}

TEST(StrFormat, PartOfItsOwnTextMayBeAValue) {
    for (const char* const source : {"%1 tail", "%1 tail%%"}) {
        StrFormat format(source);
        const std::string tail = textOf(format).substr(3);
        EXPECT_EQ(textOf(format.arg(static_cast<const char*>(format) + 3)), tail + " " + tail);
    }
    StrFormat twice("%1%1 100%% tail");
    EXPECT_EQ(textOf(twice.arg(static_cast<const char*>(twice) + 10)), "tailtail 100% tail");
    StrFormat appended("tail");
    appended.AppendIfNoPlaceholder(true);
    appended.arg(static_cast<const char*>(appended));
    EXPECT_EQ(textOf(StrFormat(appended)), "tail, tail");
}

TEST(StrFormat, ManyPlacesAndValuesAreFilled) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        text += "%1%2";
        expected += "ab";
    }
    EXPECT_EQ(textOf(StrFormat(text.c_str()).arg("a").arg("b")), expected);
}

TEST(Sfmt, AppendsValuesWithoutAPlace) {
    EXPECT_EQ(textOf(sfmt("Failed", 5)), "Failed, 5");
    EXPECT_EQ(textOf(sfmt("Failed")), "Failed");
}

TEST(Sfmt, TakesTheListsOfValuesThatTheLibraryUses) {
    char text[] = "text";
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4 %5", 1, "a", 2, "b", "c")), "1 a 2 b c");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3", text, 1, CString("c"))), "text 1 c");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4", text, 1, 2, 3)), "text 1 2 3");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4", text, 1L, 2, 3)), "text 1 2 3");
    EXPECT_EQ(textOf(sfmt("%1 %2", text, 1)), "text 1");
    EXPECT_EQ(textOf(sfmt("%1 %2", text, static_cast<unsigned char>(7))), "text 7");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4 %5", 1, text, 2, text, "c")), "1 text 2 text c");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4 %5", 1, "a", 2U, "b", CString("c"))), "1 a 2 b c");
    EXPECT_EQ(textOf(sfmt("%1 %2 %3 %4 %5", 1, "a", 2U, "b", "c")), "1 a 2 b c");
}

// A plain reading of the rules, one value after the other.
class NaiveFormat {
  public:
    explicit NaiveFormat(std::string text) : m_text(std::move(text)) {}

    void Arg(const std::string& value) {
        std::string doubled;
        for (const char ch : value) doubled += ch == '%' ? "%%" : std::string(1, ch);
        char lowest = '9' + 1;
        ForEachPair([&](char ch) { lowest = isdigit(ch) != 0 ? std::min(lowest, ch) : lowest; });
        if (lowest > '9') {
            m_text += ", " + doubled;
            return;
        }
        m_rendered.clear();
        std::string result;
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            const bool pair = m_text[i] == '%' && i + 1 < m_text.size();
            if (pair && m_text[i + 1] == '%') {
                result += "%%";
                ++i;
            } else if (pair && m_text[i + 1] == lowest) {
                result += doubled;
                ++i;
            } else {
                result += m_text[i];
            }
        }
        m_text = result;
    }

    std::string Read() {
        if (!m_rendered.empty()) return m_rendered;
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            m_rendered += m_text[i];
            if (m_text.compare(i, 2, "%%") == 0) ++i;
        }
        return m_rendered;
    }

  private:
    template <typename Look>
    void ForEachPair(Look look) const {
        for (std::size_t i = 0; i + 1 < m_text.size(); ++i) {
            if (m_text[i] != '%') continue;
            look(m_text[i + 1]);
            if (m_text[i + 1] == '%') ++i;
        }
    }

    std::string m_text;
    std::string m_rendered;
};

TEST(StrFormatModel, RandomTemplatesAndValuesAgreeWithAPlainReading) {
    std::mt19937 random(randomSeed());
    const auto text = [&random](std::size_t limit) {
        std::string result(random() % (limit + 1), '\0');
        for (char& ch : result) ch = "%%%%123a0,"[random() % 10];
        return result;
    };
    for (int round = 0; round < randomRounds(100000); ++round) {
        const std::string source = text(12);
        StrFormat format(source.c_str());
        format.AppendIfNoPlaceholder(true);
        NaiveFormat naive(source);
        for (std::size_t values = random() % 4; values > 0; --values) {
            const std::string value = text(5);
            format.arg(value.c_str());
            naive.Arg(value);
            if (random() % 2 == 0) {
                ASSERT_EQ(textOf(format), naive.Read()) << "template: " << source;
            }
        }
        ASSERT_EQ(textOf(format), naive.Read()) << "template: " << source;
    }
}

}  // namespace
