#include "UStrings.h"

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "failing_memory.h"
#include "list_records.h"
#include "record_log.h"
#include "text_of.h"

namespace {

using testing::ElementsAre;

std::vector<std::string> itemsOf(const UStrings& strings) {
    std::vector<std::string> items;
    for (int i = 0; i < strings.getCount(); ++i) items.emplace_back(strings.getItem(i));
    return items;
}

struct Splitting {
    const char* text;
    char delimiter;
    unsigned int flags;
    std::vector<std::string> items;
};
class SplitTexts : public testing::TestWithParam<Splitting> {};

TEST_P(SplitTexts, ByConstruction) {
    const UStrings strings(GetParam().text, GetParam().delimiter, GetParam().flags);
    EXPECT_EQ(itemsOf(strings), GetParam().items);
}

TEST_P(SplitTexts, ReplaceWhatWasThere) {
    UStrings strings("old;older", ';', 0);
    EXPECT_EQ(strings.fromString(GetParam().text, GetParam().delimiter, GetParam().flags), 0);
    EXPECT_EQ(itemsOf(strings), GetParam().items);
    strings.Create(GetParam().text, GetParam().delimiter, GetParam().flags);
    EXPECT_EQ(itemsOf(strings), GetParam().items);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SplitTexts,
    testing::Values(
        Splitting{"a,b", ',', 0, {"a", "b"}}, Splitting{"a,,b", ',', 0, {"a", "b"}},
        Splitting{",a,", ',', 0, {"a"}}, Splitting{"abc", ',', 0, {"abc"}},
        Splitting{"", ',', 3, {}}, Splitting{nullptr, ',', 3, {}}, Splitting{",,,", ',', 0, {}},
        Splitting{"a,,b", ',', 1, {"a", ",", ",", "b"}}, Splitting{",a,", ',', 1, {",", "a", ","}},
        Splitting{",", ',', 1, {","}}, Splitting{" x ,y", ',', 2, {"x", "y"}},
        Splitting{" x ,y", ',', 0, {" x ", "y"}}, Splitting{"a, ,b", ',', 2, {"a", "", "b"}},
        Splitting{"  ", ',', 2, {""}}, Splitting{"\ta\t, b\n", ',', 2, {"\ta\t", "b\n"}},
        Splitting{" a b ", ',', 2, {"a b"}}, Splitting{" x , y ", ',', 3, {"x", ",", "y"}},
        Splitting{"a b  c", ' ', 3, {"a", " ", "b", " ", " ", "c"}},
        Splitting{"abc", '\0', 3, {"abc"}},
        Splitting{"a\xff"
                  "b",
                  '\xff',
                  0,
                  {"a", "b"}}));

TEST(Strings, BeginEmpty) {
    const UStrings strings;
    EXPECT_EQ(strings.getCount(), 0);
    EXPECT_EQ(strings.getItem(0), nullptr);
    EXPECT_EQ(textOf(strings.toString()), "");
}

TEST(Strings, AreJoinedWithTheDelimiterOfTheirConstruction) {
    UStrings strings("a-b-c", '-', 0);
    EXPECT_EQ(textOf(strings.toString()), "a-b-c");
    strings.fromString("x,y", ',', 0);
    EXPECT_EQ(textOf(strings.toString()), "x-y");
    strings.Create("x,y", ',', 0);
    EXPECT_EQ(textOf(strings.toString()), "x,y");
}

TEST(Strings, WithoutADelimiterAreJoinedWithNothing) {
    UStrings strings;
    strings.addItem("a");
    strings.addItem("b");
    EXPECT_EQ(textOf(strings.toString()), "ab");
}

TEST(Strings, EmptyItemsAreJoinedLikeOthers) {
    UStrings strings("", ',', 0);
    for (const char* text : {"", "a", static_cast<const char*>(nullptr)}) strings.addItem(text);
    EXPECT_EQ(textOf(strings.toString()), ",a,");
}

TEST(Strings, AddCopiesOfTexts) {
    UStrings strings;
    char text[] = "abc";
    EXPECT_EQ(strings.addItem(text), 0);
    EXPECT_EQ(strings.addItem(text, 2), 0);
    EXPECT_EQ(strings.addItem(text, 0), 0);
    EXPECT_EQ(strings.addItem(nullptr), 0);
    EXPECT_EQ(strings.addItem(nullptr, 5), 0);
    text[0] = 'x';
    EXPECT_THAT(itemsOf(strings), ElementsAre("abc", "ab", "", "", ""));
}

TEST(Strings, RemoveItems) {
    UStrings strings("a,b,c", ',', 0);
    EXPECT_EQ(strings.removeItem(1), 2);
    EXPECT_THAT(itemsOf(strings), ElementsAre("a", "c"));
    EXPECT_EQ(strings.removeItem(2), 0);
    EXPECT_EQ(strings.removeItem(-1), 0);
    strings.clear();
    EXPECT_EQ(strings.getCount(), 0);
}

TEST(Strings, HaveNoItemOutsideTheirCount) {
    const UStrings strings("a", ',', 0);
    EXPECT_EQ(strings.getItem(-1), nullptr);
    EXPECT_EQ(strings.getItem(1), nullptr);
}

TEST(Strings, FindTheFirstItemThatATextBeginsWith) {
    const UStrings strings("ab,a", ',', 0);
    EXPECT_EQ(strings.find("abc"), 0);
    EXPECT_EQ(strings.find("ab"), 0);
    EXPECT_EQ(strings.find("ac"), 1);
    EXPECT_EQ(strings.find("a"), 1);
    EXPECT_EQ(strings.find("b"), -1);
    EXPECT_EQ(strings.find(""), -1);
    EXPECT_EQ(strings.find("AB"), -1);
    EXPECT_EQ(strings.find(nullptr), -1);
}

TEST(Strings, AnEmptyItemIsTheBeginningOfEveryText) {
    UStrings strings;
    strings.addItem("");
    EXPECT_EQ(strings.find("abc"), 0);
    EXPECT_EQ(strings.find(""), 0);
}

TEST(StringsItem, HoldsATextOrNone) {
    EXPECT_STREQ(UStringsItem("abc"), "abc");
    EXPECT_STREQ(UStringsItem("abc", 2), "ab");
    EXPECT_STREQ(UStringsItem(""), "");
    EXPECT_STREQ(UStringsItem(nullptr), "");
    EXPECT_STREQ(UStringsItem(nullptr, 2), "");
    EXPECT_STREQ(UStringsItem("abc", 0), "");
}

TEST(StringsItem, TrimsBlanksAlone) {
    for (const auto& [text, trimmed] :
         std::vector<std::pair<const char*, const char*>>{{"  a b  ", "a b"},
                                                          {"\t a", "\t a"},
                                                          {"a \n", "a \n"},
                                                          {"   ", ""},
                                                          {"", ""},
                                                          {"a", "a"}}) {
        UStringsItem item(text);
        item.trim();
        EXPECT_STREQ(item, trimmed);
    }
}

TEST(Strings, WithoutMemoryAnItemIsNotAddedAndThatIsLogged) {
    // The item, its text, and the list's place for it.
    for (int n = 1; n <= 3; ++n) {
        UStrings strings("a", ',', 0);
        const RecordLog log;
        const FailingAllocation failing(n);
        EXPECT_EQ(strings.addItem("b"), -1) << n;
        EXPECT_TRUE(failing.happened()) << n;
        EXPECT_EQ(textOf(strings.toString()), "a");
        EXPECT_EQ(recordsOf(log),
                  n < 3 ? recordsWithout("UStrings::addItem - EXCEPTION") : recordsWithoutPlace(2));
    }
}

TEST(Strings, WithoutMemorySplittingLeavesOnePieceOutAndThatIsToldAndLogged) {
    for (int n = 1; n <= 9; ++n) {
        UStrings strings;
        const RecordLog log;
        const FailingAllocation failing(n);
        EXPECT_EQ(strings.fromString("a,b,c", ',', 0), -1) << n;
        EXPECT_TRUE(failing.happened()) << n;
        EXPECT_EQ(strings.getCount(), 2) << n;
        // Three for each piece: the item, its text, and the list's place for it.
        EXPECT_EQ(recordsOf(log), n % 3 != 0 ? recordsWithout("UStrings::fromString - EXCEPTION")
                                             : recordsWithoutPlace(n / 3))
            << n;
    }
}

TEST(Strings, WithoutMemorySplittingTellsOfADelimiterLeftOut) {
    for (int n = 1; n <= 9; ++n) {
        UStrings strings;
        const FailingAllocation failing(n);
        EXPECT_EQ(strings.fromString("a,b", ',', UStrings::kKeepDelimiters), -1) << n;
        EXPECT_TRUE(failing.happened()) << n;
        EXPECT_EQ(strings.getCount(), 2) << n;
    }
}

TEST(Strings, WithoutMemoryJoiningRaises) {
    const UStrings strings("a,b", ',', 0);
    const FailingAllocation failing(1);
    EXPECT_THROW(static_cast<void>(strings.toString()), std::bad_alloc);
}

TEST(Strings, ManyPiecesAreSplitAndJoined) {
    std::string text;
    while (text.size() < 100000) text += "piece,";
    text += "end";
    UStrings strings(text.c_str(), ',', 0);
    EXPECT_EQ(strings.getCount(), 16668);
    EXPECT_EQ(textOf(strings.toString()), text);
}

}  // namespace
