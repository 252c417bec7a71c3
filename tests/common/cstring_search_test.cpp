// Comparisons, searches and parts of a text.

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "CString.h"
#include "text_of.h"

namespace {

const char* const kNull = nullptr;

int sign(int number) { return (number > 0) - (number < 0); }

TEST(CStringCompare, FollowsStrcmp) {
    const struct {
        const char* a;
        const char* b;
        int expected;
    } rows[] = {
        {"", "", 0},        {"a", "", 1},      {"", "a", -1},     {"abc", "abc", 0},
        {"abc", "abd", -1}, {"abd", "abc", 1}, {"ab", "abc", -1}, {"abc", "ab", 1},
        {"a", "A", 1},      {"a", "\xE4", -1}, {"abc", kNull, 1}, {"", kNull, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(sign(CString(row.a).Compare(row.b)), row.expected);
}

TEST(CStringCompareNoCase, FoldsAsciiLettersOnly) {
    const struct {
        const char* a;
        const char* b;
        int expected;
    } rows[] = {
        {"", "", 0},
        {"ABC", "abc", 0},
        {"AZ@[`{", "az@[`{", 0},
        {"@", "`", '@' - '`'},
        {"[", "{", '[' - '{'},
        {"B", "a", 1},
        {"a", "C", 'a' - 'c'},
        {"_", "A", '_' - 'a'},
        {"abc", "ab", 'c'},
        {"ab", "abC", -'c'},
        {"\xC4", "\xE4", 0xC4 - 0xE4},
        {"x\xC4", "X\xE4", 0xC4 - 0xE4},
        {"\xE4", "z", 0xE4 - 'z'},
        {"A", kNull, 'a'},
        {"", kNull, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(CString(row.a).CompareNoCase(row.b), row.expected);
}

TEST(CStringFind, CharacterGivesTheFirstAtOrBehindTheStart) {
    const CString s("abcabc");
    EXPECT_EQ(s.Find('b'), 1);
    EXPECT_EQ(s.Find('b', 1), 1);
    EXPECT_EQ(s.Find('b', 2), 4);
    EXPECT_EQ(s.Find('b', 5), -1);
    EXPECT_EQ(s.Find('x'), -1);
}

TEST(CStringFind, NulGivesTheLength) {
    EXPECT_EQ(CString("abc").Find('\0'), 3);
    EXPECT_EQ(CString("abc").Find('\0', 3), 3);
    EXPECT_EQ(CString().Find('\0'), 0);
}

TEST(CStringFind, TextGivesTheFirstAtOrBehindTheStart) {
    const CString s("one two one");
    EXPECT_EQ(s.Find("one"), 0);
    EXPECT_EQ(s.Find("one", 1), 8);
    EXPECT_EQ(s.Find("one", 9), -1);
    EXPECT_EQ(s.Find("three"), -1);
    EXPECT_EQ(s.Find(""), 0);
    EXPECT_EQ(s.Find("", 4), 4);
    EXPECT_EQ(s.Find(kNull), 0);
}

TEST(CStringFind, StartOutsideTheTextFindsNothing) {
    const CString s("abc");
    for (const int start : {-1, INT_MIN, 4, INT_MAX}) {
        EXPECT_EQ(s.Find('a', start), -1);
        EXPECT_EQ(s.Find("a", start), -1);
        EXPECT_EQ(s.FindOneOf("a", start), -1);
    }
}

TEST(CStringFind, StopsAtAnEmbeddedNul) {
    const CString s("ab\0cd", 5);
    EXPECT_EQ(s.Find('c'), -1);
    EXPECT_EQ(s.Find("cd"), -1);
    EXPECT_EQ(s.ReverseFind('c'), -1);
    EXPECT_EQ(s.FindOneOf("cd", 0), -1);
    EXPECT_EQ(s.Find('c', 3), 3);
}

TEST(CStringReverseFind, GivesTheLast) {
    const CString s("abcabc");
    EXPECT_EQ(s.ReverseFind('b'), 4);
    EXPECT_EQ(s.ReverseFind('x'), -1);
    EXPECT_EQ(s.ReverseFind('\0'), 6);
}

TEST(CStringFindOneOf, GivesTheFirstOfTheSet) {
    const CString s("key=value;x");
    EXPECT_EQ(s.FindOneOf("=;", 0), 3);
    EXPECT_EQ(s.FindOneOf("=;"), 3);
    EXPECT_EQ(s.FindOneOf("=;", 4), 9);
    EXPECT_EQ(s.FindOneOf("!", 0), -1);
    EXPECT_EQ(s.FindOneOf("", 0), -1);
    EXPECT_EQ(s.FindOneOf(kNull, 0), -1);
}

TEST(CStringFindOneOf, StartAtTheLengthFindsNothing) {
    EXPECT_EQ(CString("abc").FindOneOf("abc", 3), -1);
    EXPECT_EQ(CString().FindOneOf("abc", 0), -1);
}

TEST(CStringMid, ClampsFirstAndCount) {
    const CString s("abcdef");
    const struct {
        int first;
        int count;
        const char* expected;
    } rows[] = {
        {-3, 2, "ab"},     {10, 2, ""}, {4, 10, "ef"},       {0, 6, "abcdef"},
        {2, 3, "cde"},     {2, 0, ""},  {2, -1, ""},         {6, 1, ""},
        {5, 1, "f"},       {7, 0, ""},  {3, INT_MAX, "def"}, {INT_MAX, INT_MAX, ""},
        {INT_MIN, 1, "a"},
    };
    for (const auto& row : rows) {
        const CString part = s.Mid(row.first, row.count);
        EXPECT_EQ(textOf(part), row.expected);
        EXPECT_EQ(part.GetAllocLength(), part.GetLength());
    }
}

TEST(CStringMid, WithoutCountGoesToTheEnd) {
    const CString s("abcdef");
    EXPECT_EQ(textOf(s.Mid(2)), "cdef");
    EXPECT_EQ(textOf(s.Mid(-2)), "abcdef");
    EXPECT_EQ(textOf(s.Mid(6)), "");
    EXPECT_EQ(textOf(s.Mid(99)), "");
}

TEST(CStringLeft, ClampsItsCount) {
    const CString s("abc");
    EXPECT_EQ(textOf(s.Left(-1)), "");
    EXPECT_EQ(textOf(s.Left(0)), "");
    EXPECT_EQ(textOf(s.Left(2)), "ab");
    EXPECT_EQ(textOf(s.Left(99)), "abc");
}

TEST(CStringRight, ClampsItsCount) {
    const CString s("abc");
    EXPECT_EQ(textOf(s.Right(-1)), "");
    EXPECT_EQ(textOf(s.Right(0)), "");
    EXPECT_EQ(textOf(s.Right(2)), "bc");
    EXPECT_EQ(textOf(s.Right(99)), "abc");
}

TEST(CStringParts, OfTheWholeTextAreFreshCopies) {
    CString s("abc");
    s.GetBuffer(50);
    for (const CString& part : {s.Mid(0), s.Mid(0, 3), s.Left(99), s.Right(99),
                                s.SpanIncluding("abc"), s.SpanExcluding("x")}) {
        EXPECT_EQ(textOf(part), "abc");
        EXPECT_NE(part.GetData(), s.GetData());
        EXPECT_EQ(part.GetAllocLength(), 3);
    }
    EXPECT_EQ(s.GetData()->refCount, 1);
}

TEST(CStringParts, OfNoLengthPointAtTheEmptyRecord) {
    const CString s("abc");
    EXPECT_EQ(s.Left(0).GetData(), afxDataNil);
    EXPECT_EQ(s.Mid(3).GetData(), afxDataNil);
}

TEST(CStringParts, KeepEmbeddedNuls) {
    const CString s("a\0bc", 4);
    EXPECT_EQ(textOf(s.Mid(0, 3)), std::string("a\0b", 3));
    EXPECT_EQ(textOf(s.Right(3)), std::string("\0bc", 3));
}

TEST(CStringSpan, IncludingGivesTheLeadingRunInTheSet) {
    const CString s("aabbcc");
    EXPECT_EQ(textOf(s.SpanIncluding("ab")), "aabb");
    EXPECT_EQ(textOf(s.SpanIncluding("b")), "");
    EXPECT_EQ(textOf(s.SpanIncluding("")), "");
    EXPECT_EQ(textOf(s.SpanIncluding(kNull)), "");
}

TEST(CStringSpan, ExcludingGivesTheLeadingRunOutsideTheSet) {
    const CString s("aabbcc");
    EXPECT_EQ(textOf(s.SpanExcluding("c")), "aabb");
    EXPECT_EQ(textOf(s.SpanExcluding("a")), "");
    EXPECT_EQ(textOf(s.SpanExcluding("")), "aabbcc");
    EXPECT_EQ(textOf(s.SpanExcluding(kNull)), "aabbcc");
}

}  // namespace
