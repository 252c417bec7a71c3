// The wildcard engine, and the matcher that is nothing but it.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "StringHelper.h"
#include "UPatternMatch.h"
#include "record_log.h"
#include "text_of.h"

namespace {

using testing::ElementsAre;

std::vector<std::string> partsOf(const char* pattern) {
    UStrings parts("old*parts", '*', 0);
    StringHelper::prepareFilter(pattern, parts);
    std::vector<std::string> texts;
    for (int i = 0; i < parts.getCount(); ++i) texts.emplace_back(parts.getItem(i));
    return texts;
}

TEST(WildcardParts, AreTheLiteralsAndEachAsterisk) {
    EXPECT_THAT(partsOf("a*b"), ElementsAre("a", "*", "b"));
    EXPECT_THAT(partsOf("**x"), ElementsAre("*", "*", "x"));
    EXPECT_THAT(partsOf("abc"), ElementsAre("abc"));
    EXPECT_THAT(partsOf("*"), ElementsAre("*"));
    EXPECT_THAT(partsOf(" a *?"), ElementsAre(" a ", "*", "?"));
    EXPECT_THAT(partsOf(""), ElementsAre());
    EXPECT_THAT(partsOf(nullptr), ElementsAre());
}

TEST(WildcardParts, KeepTheirOwnDelimiter) {
    UStrings bare;
    StringHelper::prepareFilter("a*b*", bare);
    EXPECT_EQ(textOf(bare.toString()), "a*b*");
    UStrings joined("", '-', 0);
    StringHelper::prepareFilter("a*b", joined);
    EXPECT_EQ(textOf(joined.toString()), "a-*-b");
}

TEST(WildcardParts, ArePrintedOneALineAndCounted) {
    UStrings parts;
    StringHelper::prepareFilter("a*b c", parts);
    testing::internal::CaptureStdout();
    const int count = StringHelper::printList(parts);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-a-\n-*-\n-b c-\n");
    EXPECT_EQ(count, 3);
    testing::internal::CaptureStdout();
    EXPECT_EQ(StringHelper::printList(UStrings()), 0);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

// Whether the pattern matches, by both the parts and the matcher.
bool matches(const char* pattern, const char* text) {
    UStrings parts;
    StringHelper::prepareFilter(pattern, parts);
    const bool result = StringHelper::match(text, parts);
    EXPECT_EQ(UPatternMatch(pattern).match(text), result);
    return result;
}

struct Row {
    const char* pattern;
    const char* text;
    bool isMatch;
};
class Wildcard : public testing::TestWithParam<Row> {};

TEST_P(Wildcard, MatchesOrNot) {
    const Row& row = GetParam();
    EXPECT_EQ(matches(row.pattern, row.text), row.isMatch);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Wildcard,
    testing::Values(Row{"*x", "ax", true}, Row{"*x", "x", true}, Row{"*x", "axy", false},
                    Row{"*x", "xax", true}, Row{"ab*", "abc", true}, Row{"ab*", "ab", true},
                    Row{"ab*", "a", false}, Row{"ab*", "cab", false}, Row{"a*c", "abc", true},
                    Row{"a*c", "ac", true}, Row{"a*c", "abcd", false}, Row{"a*c", "acc", true},
                    Row{"a*b*c", "abxbc", true}, Row{"a*b*c", "axc", false},
                    Row{"*b*", "abc", true}, Row{"*b*", "ac", false}, Row{"abc", "abc", true},
                    Row{"abc", "ab", false}, Row{"abc", "abcd", false}, Row{"abc", "xabc", false},
                    // The end literal does not overlap the one before it.
                    Row{"ab*ba", "aba", false}, Row{"ab*ba", "abba", true},
                    Row{"*ab*b", "ab", false},
                    // Letters have their case, and no other character is a wildcard.
                    Row{"abc", "aBc", false}, Row{"*C", "abc", false}, Row{"a?c", "abc", false},
                    Row{"a?c", "a?c", true}, Row{"[a-c]", "b", false}, Row{"\\*", "*", false},
                    Row{"\\*", "\\*", true},
                    Row{"*\xff*",
                        "a\xff"
                        "b",
                        true}));

INSTANTIATE_TEST_SUITE_P(Empty, Wildcard,
                         testing::Values(Row{"", "", true}, Row{"", "a", false}, Row{"*", "", true},
                                         Row{"*", "abc", true}, Row{"**", "", true},
                                         Row{"***", "abc", true}, Row{"a", "", false},
                                         Row{"*a*", "", false}, Row{nullptr, "", true},
                                         Row{nullptr, "a", false}));

INSTANTIATE_TEST_SUITE_P(NullText, Wildcard,
                         testing::Values(Row{"", nullptr, false}, Row{"*", nullptr, false},
                                         Row{"a", nullptr, false}, Row{nullptr, nullptr, false}));

// Every text over `letters` of up to `length` characters.
std::vector<std::string> textsOver(const std::string& letters, std::size_t length) {
    std::vector<std::string> texts{""};
    for (std::size_t i = 0; i < texts.size() && texts[i].size() < length; ++i) {
        for (const char letter : letters) texts.push_back(std::string(texts[i]) + letter);
    }
    return texts;
}

// What an asterisk means, with every way tried at once: after each character of the pattern, the
// set of the text's beginnings that match so far.
bool matchesByDefinition(const std::string& pattern, const std::string& text) {
    unsigned int reached = 1;  // bit n: the first n characters match
    const unsigned int all = (2u << text.size()) - 1;
    for (const char c : pattern) {
        unsigned int next = 0;
        for (std::size_t n = 0; n <= text.size(); ++n) {
            if ((reached >> n & 1) == 0) continue;
            if (c == '*') next |= all & ~((1u << n) - 1);
            if (c != '*' && n < text.size() && text[n] == c) next |= 2u << n;
        }
        reached = next;
    }
    return (reached >> text.size() & 1) != 0;
}

TEST(Wildcard, EqualsTheDefinitionForAllSmallPatternsAndTexts) {
    const std::vector<std::string> patterns = textsOver("ab*", 7);
    const std::vector<std::string> texts = textsOver("ab", 9);
    ASSERT_EQ(patterns.size() * texts.size(), 3355440u);
    std::size_t matched = 0;
    for (const std::string& pattern : patterns) {
        UStrings parts;
        StringHelper::prepareFilter(pattern.c_str(), parts);
        const UPatternMatch matcher(pattern.c_str());
        for (const std::string& text : texts) {
            const bool expected = matchesByDefinition(pattern, text);
            if (matcher.match(text.c_str()) != expected ||
                StringHelper::match(text.c_str(), parts) != expected) {
                FAIL() << '"' << pattern << "\" and \"" << text << "\": not " << expected;
            }
            matched += expected ? 1 : 0;
        }
    }
    EXPECT_GT(matched, 100000u);
}

TEST(Wildcard, PartsOfAnotherMakingAreTakenAsTheyAre) {
    UStrings parts;
    for (const char* part : {"a", "b", "**", "", "*"}) parts.addItem(part);
    EXPECT_TRUE(StringHelper::match("ab**c", parts));
    EXPECT_FALSE(StringHelper::match("abc", parts));
}

TEST(Wildcard, TakesOnePassOverALongText) {
    // Each would take minutes if a literal were looked for at one place after the other.
    constexpr std::size_t kMegabyte = 1 << 20;
    const std::string text(kMegabyte, 'a');
    const std::string half(kMegabyte / 2, 'a');
    EXPECT_FALSE(matches(("*" + half + "b*").c_str(), text.c_str()));
    EXPECT_FALSE(matches(("*b" + half + "*").c_str(), text.c_str()));
    EXPECT_TRUE(matches(("*" + half + "*" + half).c_str(), text.c_str()));
    EXPECT_FALSE(matches(("*" + half + "a*" + half).c_str(), text.c_str()));
    EXPECT_TRUE(matches(text.c_str(), text.c_str()));
    std::string many;
    for (int i = 0; i < 5000; ++i) many += "*a";
    EXPECT_TRUE(matches((many + "*").c_str(), text.c_str()));
    EXPECT_FALSE(matches((many + "*b").c_str(), text.c_str()));
}

TEST(Wildcard, OfAsterisksAloneMatchesEverything) {
    const std::string pattern(10000, '*');
    EXPECT_TRUE(matches(pattern.c_str(), ""));
    EXPECT_TRUE(matches(pattern.c_str(), "abc"));
}

TEST(PatternMatch, BeginsWithAnEmptyPattern) {
    const UPatternMatch matcher;
    EXPECT_STREQ(matcher.getPattern(), "");
    EXPECT_EQ(textOf(matcher.toString()), "");
    EXPECT_TRUE(matcher.match(""));
    EXPECT_FALSE(matcher.match("a"));
    EXPECT_FALSE(matcher.match(nullptr));
}

TEST(PatternMatch, ReplacesItsPatternAndNeverFails) {
    const RecordLog log;
    UPatternMatch matcher("a*");
    EXPECT_STREQ(matcher.getPattern(), "a*");
    for (const char* pattern : {"*b", "", "***", "-", "\xff\x01"}) {
        EXPECT_EQ(matcher.setPattern(pattern), 0);
        EXPECT_STREQ(matcher.getPattern(), pattern);
        EXPECT_EQ(textOf(matcher.toString()), pattern);
    }
    EXPECT_FALSE(matcher.match("abc"));
    EXPECT_EQ(matcher.setPattern(nullptr), 0);
    EXPECT_STREQ(matcher.getPattern(), "");
    EXPECT_TRUE(matcher.match(""));
    EXPECT_TRUE(log.items().empty());
}

TEST(PatternMatch, TakesItsOwnPatternAgainInWholeOrInPart) {
    UPatternMatch matcher("abc*xyz");
    EXPECT_EQ(matcher.setPattern(matcher.getPattern()), 0);
    EXPECT_TRUE(matcher.match("abc-xyz"));
    EXPECT_EQ(matcher.setPattern(matcher.getPattern() + 3), 0);
    EXPECT_STREQ(matcher.getPattern(), "*xyz");
    EXPECT_TRUE(matcher.match("xyz"));
}

TEST(PatternMatch, MatchesANumberByItsDecimalText) {
    const UPatternMatch matcher("42*7");
    EXPECT_TRUE(matcher.matchAsDWORD(427));
    EXPECT_TRUE(matcher.matchAsDWORD(4200007));
    EXPECT_FALSE(matcher.matchAsDWORD(42));
    EXPECT_TRUE(UPatternMatch("4294967295").matchAsDWORD(4294967295u));
    EXPECT_TRUE(UPatternMatch("0").matchAsDWORD(0));
    EXPECT_FALSE(UPatternMatch("").matchAsDWORD(0));
}

TEST(PatternMatch, NormalizesByCopying) {
    const UPatternMatch matcher("own");
    CString out("old");
    EXPECT_EQ(matcher.normalize(" a*B ", out, ','), 0);
    EXPECT_EQ(textOf(out), " a*B ");
    EXPECT_EQ(matcher.normalize(out, out, ','), 0);
    EXPECT_EQ(textOf(out), " a*B ");
    EXPECT_EQ(matcher.normalize(nullptr, out, ','), 0);
    EXPECT_EQ(textOf(out), "");
}

}  // namespace
