#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "UException.h"
#include "matcher_records.h"
#include "text_of.h"

/// What the matchers of all kinds have in common.

inline std::string orEmpty(const char* text) { return text == nullptr ? "" : text; }

/// Expects that the matcher shows no pattern, and matches none of `texts` nor null.
template <class Match>
void expectNoPattern(const Match& matcher, std::initializer_list<const char*> texts) {
    EXPECT_STREQ(matcher.getPattern(), "");
    EXPECT_EQ(textOf(matcher.toString()), "");
    for (const char* text : texts) EXPECT_FALSE(matcher.match(text)) << text;
    EXPECT_FALSE(matcher.match(nullptr));
    EXPECT_FALSE(matcher.matchAsDWORD(0));
}

/// A pattern, a candidate, and whether that matches.
struct MatchRow {
    const char* pattern;
    const char* text;
    bool isMatch;
};

/// Expects what `row` says of a matcher of its pattern, which is shown as it was given.
template <class Match>
void expectMatch(const MatchRow& row) {
    const Match matcher(row.pattern);
    EXPECT_STREQ(matcher.getPattern(), row.pattern);
    EXPECT_EQ(textOf(matcher.toString()), row.pattern);
    EXPECT_EQ(matcher.match(row.text), row.isMatch);
}

/// Expects that each first text has the second as its normal form, which is its own.
template <class Match>
void expectNormalForms(std::initializer_list<std::pair<const char*, const char*>> forms) {
    const Match matcher;
    for (const auto& [pattern, normal] : forms) {
        CString out;
        EXPECT_EQ(matcher.normalize(pattern, out, ','), 0);
        EXPECT_EQ(textOf(out), normal);
        // What is normal stays so, wherever it stands.
        EXPECT_EQ(matcher.normalize(out, out, ';'), 0);
        EXPECT_EQ(textOf(out), normal);
    }
}

/// Expects that `pattern`, which the setter refuses with `records`, has no normal form: `function`
/// raises "wrong pattern" and leaves what was in its result.
template <class Match>
void expectNoNormalForm(const char* pattern, Records records, const char* function) {
    records.push_back(raised(function, "wrong pattern, " + orEmpty(pattern)));
    records.push_back(caught(function));
    const Match matcher;
    CString out("as it was");
    EXPECT_EQ(recordsOf([&] { EXPECT_EQ(matcher.normalize(pattern, out, ','), -1); }), records);
    EXPECT_EQ(textOf(out), "as it was");
}

/// Expects that `pattern` is refused with `records`, by the setter, which leaves no pattern of the
/// `good` one that was there, and by the constructor, which raises `function`'s "invalid pattern".
template <class Match>
void expectRefused(const char* pattern, const Records& records, const char* function,
                   const char* good, const char* candidate) {
    Match matcher(good);
    ASSERT_TRUE(matcher.match(candidate));
    EXPECT_EQ(recordsOf([&] { EXPECT_EQ(matcher.setPattern(pattern), -1); }), records);
    expectNoPattern(matcher, {candidate});

    const std::string message = "invalid pattern, " + orEmpty(pattern);
    Records withConstructor = records;
    withConstructor.push_back(raised(function, message));
    EXPECT_EQ(recordsOf([&] {
                  try {
                      const Match made(pattern);
                      ADD_FAILURE() << "nothing raised";
                  } catch (const UException& e) {
                      EXPECT_EQ(e.GetErrorCode(), -1);
                      EXPECT_STREQ(e.GetFileName(), "/str_helper");
                      EXPECT_STREQ(e.GetFunctionName(), function);
                      EXPECT_EQ(e.GetErrorMessage(), "EXCEPTION - " + message);
                  }
              }),
              withConstructor);

    EXPECT_EQ(matcher.setPattern(good), 0);
    EXPECT_TRUE(matcher.match(candidate));
}
