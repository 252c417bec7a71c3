#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "UException.h"
#include "record_log.h"

/// What matchers log, without line numbers.

using Records = std::vector<std::string>;

inline std::string raised(const std::string& function, const std::string& message,
                          const std::string& unit = "/str_helper") {
    return "1, " + unit + ", LINE, " + function + ", EXCEPTION - " + message + "\n";
}

inline std::string caught(const std::string& operation) {
    return "1, /str_helper, LINE, , EXCEPTION caught: " + operation + " - EXCEPTION\n";
}

/// @return the source line that the first of `records` with `text` in it names; "" without one.
inline std::string lineOf(const Records& records, const std::string& text) {
    for (const std::string& record : records) {
        if (record.find(text) == std::string::npos) continue;
        const std::size_t line = record.find(", ", record.find(", ") + 2) + 2;
        return record.substr(line, record.find(',', line) - line);
    }
    return "";
}

/// @return the records that `action` writes at level 1.
template <class Action>
Records recordsOf(Action action) {
    const RecordLog log;
    action();
    Records records;
    for (const std::string& item : log.items()) records.push_back(withoutLine(item));
    return records;
}

/// Expects that `pattern` is refused with `records`, by the setter, which leaves no pattern of the
/// `good` one that was there, and by the constructor, which raises `function`'s "invalid pattern".
template <class Match>
void expectRefused(const char* pattern, const Records& records, const char* function,
                   const char* good, const char* candidate) {
    Match matcher(good);
    ASSERT_TRUE(matcher.match(candidate));
    EXPECT_EQ(recordsOf([&] { EXPECT_EQ(matcher.setPattern(pattern), -1); }), records);
    EXPECT_STREQ(matcher.getPattern(), "");
    EXPECT_FALSE(matcher.match(candidate));

    const std::string message =
        std::string("invalid pattern, ") + (pattern == nullptr ? "" : pattern);
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
