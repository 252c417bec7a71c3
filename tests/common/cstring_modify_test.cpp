// Changes in place: case, reversal, replacing, trimming.

#include <gtest/gtest.h>

#include <clocale>
#include <functional>
#include <string>

#include "CString.h"
#include "text_of.h"

namespace {

const char* const kNull = nullptr;

TEST(CStringCase, MakeUpperAndMakeLowerConvertTheText) {
    CString s("aZ09@[`{");
    s.MakeUpper();
    EXPECT_EQ(textOf(s), "AZ09@[`{");
    s.MakeLower();
    EXPECT_EQ(textOf(s), "az09@[`{");
}

TEST(CStringCase, LeavesOtherBytesAloneInTheCLocale) {
    CString s("\xE4\xC4");
    s.MakeUpper();
    EXPECT_EQ(textOf(s), "\xE4\xC4");
    s.MakeLower();
    EXPECT_EQ(textOf(s), "\xE4\xC4");
}

TEST(CStringMakeReverse, UnsharesAndLeavesTheText) {
    CString s("abc");
    const CString other(s);
    s.MakeReverse();
    EXPECT_EQ(textOf(s), "abc");
    EXPECT_NE(s.GetData(), other.GetData());
    EXPECT_EQ(other.GetData()->refCount, 1);
}

TEST(CStringModification, OfOneOfTwoCopiesLeavesTheOtherUnchanged) {
    const std::function<void(CString&)> changes[] = {
        [](CString& s) { s.SetAt(0, 'X'); },
        [](CString& s) { s.MakeUpper(); },
        [](CString& s) { s.MakeLower(); },
        [](CString& s) { s.MakeReverse(); },
        [](CString& s) { s.Replace('b', 'X'); },
        [](CString& s) { s.Replace("b", "XY"); },
        [](CString& s) { s.Replace("bC", ""); },
        [](CString& s) { s.TrimLeft(); },
        [](CString& s) { s.TrimRight(); },
        [](CString& s) { s.Empty(); },
        [](CString& s) { s += "X"; },
        [](CString& s) { s += 'X'; },
        [](CString& s) { s = "X"; },
        [](CString& s) { s = 'X'; },
        [](CString& s) { s.Format("%d", 5); },
        [](CString& s) { s.GetBuffer(1)[0] = 'X'; },
        [](CString& s) { s.GetBufferSetLength(9)[0] = 'X'; },
        [](CString& s) { s.ReleaseBuffer(1); },
        [](CString& s) { s.LockBuffer()[0] = 'X'; },
    };
    for (const auto& change : changes) {
        CString s(" bC ");
        const CString other(s);
        change(s);
        EXPECT_EQ(textOf(other), " bC ");
        EXPECT_EQ(other.GetData()->refCount, 1);
        EXPECT_NE(s.GetData(), other.GetData());
    }
}

TEST(CStringModification, ThatFindsNothingToDoStillUnshares) {
    const std::function<void(CString&)> changes[] = {
        [](CString& s) { s.SetAt(0, '1'); },
        [](CString& s) { s.MakeUpper(); },
        [](CString& s) { s.MakeLower(); },
        [](CString& s) { EXPECT_EQ(s.Replace('b', 'X'), 0); },
        [](CString& s) { s.TrimLeft(); },
        [](CString& s) { s.TrimRight(); },
        [](CString& s) { s.ReleaseBuffer(); },
    };
    for (const auto& change : changes) {
        CString s("123");
        const CString other(s);
        change(s);
        EXPECT_EQ(textOf(s), "123");
        EXPECT_NE(s.GetData(), other.GetData());
        EXPECT_EQ(other.GetData()->refCount, 1);
    }
}

TEST(CStringReplaceCharacter, ReplacesEveryOneAndCounts) {
    CString s("abcabc");
    EXPECT_EQ(s.Replace('b', 'X'), 2);
    EXPECT_EQ(textOf(s), "aXcaXc");
    EXPECT_EQ(s.Replace('q', 'r'), 0);
}

TEST(CStringReplaceCharacter, ReachesBehindEmbeddedNuls) {
    CString s("a\0a", 3);
    EXPECT_EQ(s.Replace('a', 'b'), 2);
    EXPECT_EQ(textOf(s), std::string("b\0b", 3));
    EXPECT_EQ(s.Replace('\0', '.'), 1);
    EXPECT_EQ(textOf(s), "b.b");
}

TEST(CStringReplaceCharacter, ByItselfDoesNothingAtAll) {
    CString s("aaa");
    const CString other(s);
    EXPECT_EQ(s.Replace('a', 'a'), 0);
    EXPECT_EQ(s.GetData(), other.GetData());
}

struct ReplaceRow {
    const char* text;
    const char* what;
    const char* by;
    int count;
    const char* expected;
};

class CStringReplaceText : public testing::TestWithParam<ReplaceRow> {};

TEST_P(CStringReplaceText, GivesCountAndTextInABlockOfExactlyTheNewLengthWhenItGrows) {
    const ReplaceRow& row = GetParam();
    CString s(row.text);
    const int oldLength = s.GetLength();
    EXPECT_EQ(s.Replace(row.what, row.by), row.count);
    EXPECT_EQ(textOf(s), row.expected);
    EXPECT_EQ(s.GetAllocLength(), std::max(s.GetLength(), oldLength));
}

TEST_P(CStringReplaceText, StaysInABlockWithRoom) {
    const ReplaceRow& row = GetParam();
    CString s(row.text);
    const char* const block = s.GetBuffer(40);
    EXPECT_EQ(s.Replace(row.what, row.by), row.count);
    EXPECT_EQ(textOf(s), row.expected);
    EXPECT_EQ(static_cast<const char*>(s), block);
}

TEST_P(CStringReplaceText, OfASharedTextLeavesTheOther) {
    const ReplaceRow& row = GetParam();
    CString s(row.text);
    const CString other(s);
    EXPECT_EQ(s.Replace(row.what, row.by), row.count);
    EXPECT_EQ(textOf(s), row.expected);
    EXPECT_EQ(textOf(other), row.text);
    EXPECT_EQ(s.GetAllocLength(), std::max(s.GetLength(), other.GetLength()));
    // Without an occurrence nothing changes: the text stays shared.
    EXPECT_EQ(s.GetData() == other.GetData(), row.count == 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CStringReplaceText,
    testing::Values(
        ReplaceRow{"aaa", "a", "aa", 3, "aaaaaa"}, ReplaceRow{"abc", "", "x", 0, "abc"},
        ReplaceRow{"abc", kNull, "x", 0, "abc"}, ReplaceRow{"abcabc", "b", kNull, 2, "acac"},
        ReplaceRow{"abcabc", "b", "", 2, "acac"}, ReplaceRow{"abcabc", "bc", "X", 2, "aXaX"},
        ReplaceRow{"abcabc", "abc", "xyz", 2, "xyzxyz"}, ReplaceRow{"abc", "abc", "", 1, ""},
        ReplaceRow{"aaaa", "aa", "a", 2, "aa"}, ReplaceRow{"aaa", "aa", "b", 1, "ba"},
        ReplaceRow{"x%1y%", "%", "%%", 2, "x%%1y%%"}, ReplaceRow{"abc", "d", "e", 0, "abc"},
        ReplaceRow{"abc", "abcd", "e", 0, "abc"},
        ReplaceRow{"ab.ab.", ".", "--->", 2, "ab--->ab--->"}));

TEST(CStringReplace, WorksInEverySegmentBetweenNuls) {
    const std::string text("a-b\0-\0\0c-", 9);
    for (const char* const by : {"", "+", "+++"}) {
        CString s(text.data(), static_cast<int>(text.size()));
        EXPECT_EQ(s.Replace("-", by), 3);
        const std::string mark(by);
        EXPECT_EQ(textOf(s), "a" + mark + "b" + std::string(1, '\0') + mark + std::string(2, '\0') +
                                 "c" + mark);
    }
}

TEST(CStringReplace, OfTheOwnTextAndByTheOwnTextIsSafe) {
    for (const int room : {0, 40}) {
        CString s("abab");
        s.GetBuffer(room);
        EXPECT_EQ(s.Replace(static_cast<const char*>(s) + 2, "-"), 2);
        EXPECT_EQ(textOf(s), "--");
        s = "abab";
        EXPECT_EQ(s.Replace("a", s), 2);
        EXPECT_EQ(textOf(s), "ababbababb");
    }
}

TEST(CStringReplace, OnALockedTextKeepsTheLockWhileItFits) {
    CString s("abab");
    const char* const block = s.LockBuffer();
    EXPECT_EQ(s.Replace("a", "x"), 2);
    EXPECT_EQ(s.Replace("xb", "y"), 2);
    EXPECT_EQ(s.Replace("y", "zz"), 2);
    EXPECT_EQ(textOf(s), "zzzz");
    EXPECT_EQ(static_cast<const char*>(s), block);
    EXPECT_EQ(s.GetData()->refCount, -1);
    EXPECT_EQ(s.Replace("z", s), 4);
    EXPECT_EQ(textOf(s), "zzzzzzzzzzzzzzzz");
    EXPECT_EQ(s.GetData()->refCount, 1);
}

TEST(CStringTrim, LeftRemovesLeadingWhiteSpace) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {{" \t\n\v\f\rab c ", "ab c "}, {"ab", "ab"}, {"   ", ""}, {"", ""}};
    for (const auto& row : rows) {
        CString s(row.text);
        s.TrimLeft();
        EXPECT_EQ(textOf(s), row.expected);
        EXPECT_EQ(s[s.GetLength()], '\0');
    }
}

TEST(CStringTrim, RightRemovesTheTrailingRunOfWhiteSpace) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {{" ab c \t\n\v\f\r", " ab c"}, {"ab", "ab"}, {"   ", ""}, {"", ""}};
    for (const auto& row : rows) {
        CString s(row.text);
        s.TrimRight();
        EXPECT_EQ(textOf(s), row.expected);
        EXPECT_EQ(s[s.GetLength()], '\0');
    }
}

TEST(CStringTrim, KeepsTheBlockAndEmbeddedNuls) {
    CString s("  a\0b  ", 7);
    const char* const block = s;
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(textOf(s), std::string("a\0b", 3));
    EXPECT_EQ(static_cast<const char*>(s), block);
    EXPECT_EQ(s.GetAllocLength(), 7);
}

TEST(CStringTrim, TakesNoHighByteForASpace) {
    CString s("\xA0x\xA0");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(textOf(s), "\xA0x\xA0");
}

}  // namespace
