#include "CharacterSet.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

#include "failing_memory.h"
#include "record_log.h"

namespace {

struct Row {
    const char* text;
    const char* set;
    bool result;
};
class CharacterSet : public testing::TestWithParam<Row> {};

TEST_P(CharacterSet, HoldsAllOfATextOrNot) {
    EXPECT_EQ(checkCharacterSet(GetParam().text, GetParam().set, 100), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Rows, CharacterSet,
                         testing::Values(Row{"abc", "[abc]", true}, Row{"abcd", "[abc]", false},
                                         Row{"abc", "[a-c]", true}, Row{"a-c", "[a-c]", false},
                                         Row{"a-c", "[ac-]", true}, Row{"a-c", "[-ac]", true},
                                         Row{"a]", "[]a]", true}, Row{"abc", "[^x]", true},
                                         Row{"axc", "[^x]", false}, Row{"a]", "[^]]", false},
                                         Row{"a^", "[a^]", true}, Row{"b", "[c-a]", false},
                                         Row{"c-a", "[c-a]", true}, Row{"A1 ", "[A-Z0-9 ]", true},
                                         Row{"\xe4", "[\xe0-\xef]", true},
                                         Row{"", "[a-z]", false}));

INSTANTIATE_TEST_SUITE_P(OtherConversions, CharacterSet,
                         testing::Values(Row{"abc", "s", false}, Row{"abc", "n", false},
                                         Row{"abc", "", false}, Row{"abc", "[abc", false},
                                         Row{"abc", "[]", false}, Row{"abc", "[abc]%s%s%n", false},
                                         Row{"abc", "5[abc]", false}, Row{"abc", "*[abc]", false},
                                         Row{"abc", "[^", false}));

TEST(CharacterSetLimit, IsTheLongestTextAccepted) {
    EXPECT_TRUE(checkCharacterSet("abc", "[a-c]", 3));
    EXPECT_FALSE(checkCharacterSet("abc", "[a-c]", 2));
    EXPECT_FALSE(checkCharacterSet("a", "[a-c]", 0));
}

TEST(CharacterSetText, IsRefusedFromItsFirstNulOn) {
    EXPECT_FALSE(checkCharacterSet(CString("a\0b", 3), "[a-c]", 10));
    EXPECT_FALSE(checkCharacterSet(CString("a\0b", 3), "[^x]", 10));
}

void expectRefusal(const CString& text, const CString& set, const std::string& message) {
    const RecordLog log;
    EXPECT_FALSE(checkCharacterSet(text, set, 5));
    ASSERT_EQ(log.items().size(), 2u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /m_strings, LINE, checkCharacterSet(), EXCEPTION - " + message + "\n");
    EXPECT_EQ(withoutLine(log.items()[1]),
              "1, /m_strings, LINE, , EXCEPTION caught: EXCEPTION - " + message + "\n");
}

TEST(CharacterSetRefusals, AreLoggedAsRaisedAndAsCaught) {
    expectRefusal("abcdef", "[a-z]", "input variable length exceeds the maximum length");
    expectRefusal("abc", "[x]", "_stscanf() failed (res), 0");
    expectRefusal("", "[x]", "_stscanf() failed (res), -1");
    expectRefusal("abc", "%n", "_stscanf() failed (res), 0");
}

TEST(CharacterSetRefusals, DoNotIncludeATextThatGoesOnOtherwise) {
    const RecordLog log;
    EXPECT_FALSE(checkCharacterSet("abx", "[abc]", 5));
    EXPECT_TRUE(log.items().empty());
}

TEST(CharacterSetRefusals, WithoutMemoryAreLoggedUnderTheOperationsMarker) {
    const CString text("a");
    const CString set("[b]");
    const RecordLog log;
    {
        const FailingAllocation failing(1);
        EXPECT_FALSE(checkCharacterSet(text, set, 5));
    }
    ASSERT_FALSE(log.items().empty());
    EXPECT_EQ(withoutLine(log.items().back()),
              "1, /m_strings, LINE, , EXCEPTION caught: checkCharacterSet() - EXCEPTION\n");
}

TEST(CharacterSetSyntax, IsTheCLibrarys) {
    int (*const scan)(const char*, const char*, ...) = std::sscanf;  // its formats are made here
    std::mt19937 random(1010);
    const std::string characters = "abc-]^xyz";
    const auto randomText = [&](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i) text += characters[random() % characters.size()];
        return text;
    };
    for (int round = 0; round < 100000; ++round) {
        // Whatever stands in front of the last bracket is the set's: one within would end it.
        std::string members = randomText(1 + random() % 5);
        const std::size_t first = members[0] == '^' ? 1 : 0;
        for (std::size_t i = first + 1; i < members.size(); ++i) {
            if (members[i] == ']') members[i] = 'a';
        }
        if (members == "^") continue;
        const std::string set = "[" + members + "]";
        const std::string text = randomText(1 + random() % 6);
        char run[16] = "";
        const int scanned = scan(text.c_str(), ("%15" + set).c_str(), run);
        const bool expected = scanned == 1 && text == run;
        ASSERT_EQ(checkCharacterSet(text.c_str(), set.c_str(), 100), expected)
            << set << " " << text;
    }
}

}  // namespace
