#include "TextTools.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "text_of.h"

namespace {

struct Split {
    const char* text;
    bool noTrim;
    bool fromRight;
    int result;
    const char* left;
    const char* right;
};
class SplitText : public testing::TestWithParam<Split> {};

TEST_P(SplitText, AtOneSeparator) {
    const Split& split = GetParam();
    CString left("old");
    CString right("old");
    EXPECT_EQ(SplitString(split.text, left, right, '=', split.noTrim, split.fromRight),
              split.result);
    EXPECT_EQ(textOf(left), split.left);
    EXPECT_EQ(textOf(right), split.right);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SplitText,
    testing::Values(Split{"a=b=c", false, false, 1, "a", "b=c"},
                    Split{"a=b=c", false, true, 3, "a=b", "c"},
                    Split{" \ta = b\n", false, false, 4, "a", "b"},
                    Split{" a = b ", true, false, 3, " a ", " b "},
                    Split{"=b", false, false, 0, "", "b"}, Split{"a=", false, false, 1, "a", ""},
                    Split{"=", false, true, 0, "", ""}, Split{"abc", false, false, -1, "abc", ""},
                    Split{" abc ", false, false, -1, "abc", ""},
                    Split{" abc ", true, true, -1, " abc ", ""},
                    Split{"", false, false, -1, "", ""}, Split{nullptr, false, true, -1, "", ""}));

TEST(SplitString, MayStoreOverItsOwnText) {
    CString left("a=b");
    CString right;
    EXPECT_EQ(SplitString(left, left, right, '='), 1);
    EXPECT_EQ(textOf(left), "a");
    EXPECT_EQ(textOf(right), "b");
    right = "c=d";
    EXPECT_EQ(SplitString(right, left, right, '='), 1);
    EXPECT_EQ(textOf(left), "c");
    EXPECT_EQ(textOf(right), "d");
}

TEST(ParseNameValue, SplitsAtTheFirstEqualSignAndTrims) {
    CString name;
    CString value;
    EXPECT_TRUE(ParseNameValue(" a b = c = d ", name, value));
    EXPECT_EQ(textOf(name), "a b");
    EXPECT_EQ(textOf(value), "c = d");
    EXPECT_TRUE(ParseNameValue("a=", name, value));
    EXPECT_EQ(textOf(value), "");
    EXPECT_TRUE(ParseNameValue(" =x", name, value));
    EXPECT_EQ(textOf(name), "");
}

TEST(ParseNameValue, WithoutANameStoresNothing) {
    for (const char* text : {"=x", "x", "", static_cast<const char*>(nullptr)}) {
        CString name("old");
        CString value("old");
        EXPECT_FALSE(ParseNameValue(text, name, value));
        EXPECT_EQ(textOf(name), "old");
        EXPECT_EQ(textOf(value), "old");
    }
}

TEST(TrimLeft, RemovesUpToSoManyLeadingCharacters) {
    EXPECT_EQ(textOf(TrimLeft("xxxaxx", 'x', 2)), "xaxx");
    EXPECT_EQ(textOf(TrimLeft("xxxaxx", 'x', UINT_MAX)), "axx");
    EXPECT_EQ(textOf(TrimLeft("xxxaxx", 'x', 0)), "xxxaxx");
    EXPECT_EQ(textOf(TrimLeft("xx", 'x', 5)), "");
    EXPECT_EQ(textOf(TrimLeft("", 'x', 5)), "");
    EXPECT_EQ(textOf(TrimLeft("axx", 'x', 5)), "axx");
}

TEST(TrimRight, RemovesUpToSoManyTrailingCharacters) {
    EXPECT_EQ(textOf(TrimRight("xxaxxx", 'x', 2)), "xxax");
    EXPECT_EQ(textOf(TrimRight("xxaxxx", 'x', UINT_MAX)), "xxa");
    EXPECT_EQ(textOf(TrimRight("xxaxxx", 'x', 0)), "xxaxxx");
    EXPECT_EQ(textOf(TrimRight("xx", 'x', 5)), "");
    EXPECT_EQ(textOf(TrimRight("", 'x', 5)), "");
}

TEST(Trim, RemovesLeftThenRight) {
    EXPECT_EQ(textOf(Trim("((a))", '(', ')', 9)), "a");
    EXPECT_EQ(textOf(Trim("((a))", '(', ')', 1)), "(a)");
    EXPECT_EQ(textOf(Trim("))a((", '(', ')', 9)), "))a((");
    EXPECT_EQ(textOf(Trim("xx", 'x', 'x', 2)), "");
}

TEST(Trim, ANulOnTheRightMeansTheLeftOne) { EXPECT_EQ(textOf(Trim("''a''", '\'', '\0', 9)), "a"); }

TEST(TrimOnce, StripsOneEnclosingPair) {
    EXPECT_EQ(textOf(TrimOnce("\"\"a\"\"", '"', '\0')), "\"a\"");
    EXPECT_EQ(textOf(TrimOnce("<a>", '<', '>')), "a");
    EXPECT_EQ(textOf(TrimOnce("a", '<', '>')), "a");
}

TEST(StripCR, RemovesLineEnds) {
    EXPECT_EQ(textOf(stripCR("\r\na\rb\nc\r\n\r\n")), "abc");
    EXPECT_EQ(textOf(stripCR("")), "");
    EXPECT_EQ(textOf(stripCR(nullptr)), "");
}

TEST(Replacing, LeavesTheGivenTextAsItIs) {
    const CString text("a-b-c");
    EXPECT_EQ(textOf(SReplace(text, "-", "++")), "a++b++c");
    EXPECT_EQ(textOf(SReplace(text, '-', '+')), "a+b+c");
    EXPECT_EQ(textOf(text), "a-b-c");
}

struct Wide {
    std::wstring text;
    const wchar_t* oldText;
    const wchar_t* newText;
    unsigned int result;
    std::wstring after;
};
class ReplaceWide : public testing::TestWithParam<Wide> {};

TEST_P(ReplaceWide, InPlaceWhenTheResultIsNotLonger) {
    std::wstring text = GetParam().text;
    EXPECT_EQ(wcsreplace(text.data(), GetParam().oldText, GetParam().newText), GetParam().result);
    EXPECT_STREQ(text.c_str(), GetParam().after.c_str());
}

constexpr unsigned int kTooLong = 4294967295u;

INSTANTIATE_TEST_SUITE_P(
    Rows, ReplaceWide,
    testing::Values(Wide{L"a-b-c", L"-", L"+", 0, L"a+b+c"},
                    Wide{L"a--b--c", L"--", L"+", 0, L"a+b+c"}, Wide{L"abc", L"abc", L"", 0, L""},
                    Wide{L"abc", L"x", L"yyy", 0, L"abc"},
                    Wide{L"abc", L"b", L"bb", kTooLong, L"abc"}, Wide{L"", L"b", L"bb", 0, L""},
                    Wide{L"abab", L"ab", L"ba", 0, L"baba"},
                    // Behind the first "+" the search skips as many characters as "---" is longer.
                    Wide{L"---------", L"---", L"+", 0, L"+--+-"},
                    Wide{L"xxxx", L"xx", L"", 0, L"xx"}, Wide{L"xxx", L"xx", L"", 0, L"x"},
                    Wide{L"abc", L"", L"x", 0, L"abc"}, Wide{L"abc", L"b", nullptr, 0, L"ac"},
                    Wide{L"abc", nullptr, L"x", 0, L"abc"}));

TEST(WideReplace, NoTextIsNothingToDo) { EXPECT_EQ(wcsreplace(nullptr, L"a", L"b"), 0u); }

// The replacement as its rules tell it: cut, append, resume in the new text.
unsigned int plainReplace(std::wstring& text, const std::wstring& oldText,
                          const std::wstring& newText) {
    std::wstring scratch = text;
    for (std::size_t at = scratch.find(oldText); at != std::wstring::npos;) {
        scratch = scratch.substr(0, at) + newText + scratch.substr(at + oldText.size());
        if (scratch.size() > text.size()) return kTooLong;
        const std::size_t resume = at + oldText.size();
        at = resume < scratch.size() ? scratch.find(oldText, resume) : std::wstring::npos;
    }
    text = scratch;
    return 0;
}

TEST(WideReplace, FollowsTheRulesOnRandomTexts) {
    std::mt19937 random(10);
    const auto randomText = [&random](std::size_t longest, std::size_t shortest) {
        std::wstring text(shortest + random() % (longest - shortest + 1), L'a');
        for (wchar_t& c : text) c = random() % 3 == 0 ? L'b' : L'a';
        return text;
    };
    for (int round = 0; round < 50000; ++round) {
        const std::wstring before = randomText(20, 0);
        const std::wstring oldText = randomText(4, 1);
        const std::wstring newText = randomText(4, 0);
        std::wstring expected = before;
        std::wstring text = before;
        const unsigned int result = plainReplace(expected, oldText, newText);
        ASSERT_EQ(wcsreplace(text.data(), oldText.c_str(), newText.c_str()), result);
        ASSERT_EQ(std::wstring(text.c_str()), expected) << "round " << round;
    }
}

}  // namespace
