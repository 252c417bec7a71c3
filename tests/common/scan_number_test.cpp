#include <gtest/gtest.h>

#include <climits>
#include <optional>

#include "ScanNumber.h"

namespace {

struct Row {
    const char* text;
    std::optional<int> number;
};
class ScanInt : public testing::TestWithParam<Row> {};

TEST_P(ScanInt, ReadsTheNumberATextBeginsWith) {
    EXPECT_EQ(SScanInt(GetParam().text), GetParam().number) << '"' << GetParam().text << '"';
}

INSTANTIATE_TEST_SUITE_P(Grammar, ScanInt,
                         testing::Values(Row{"42", 42}, Row{"0", 0}, Row{"007", 7},
                                         Row{" \t\n\v\f\r42", 42}, Row{"+42", 42}, Row{"-42", -42},
                                         Row{"42abc", 42}, Row{"0x10", 0}, Row{"4 2", 4},
                                         Row{"", std::nullopt}, Row{"abc", std::nullopt},
                                         Row{"-", std::nullopt}, Row{"+-1", std::nullopt},
                                         Row{"- 1", std::nullopt}, Row{"=1", std::nullopt},
                                         Row{"\xb2", std::nullopt}));

INSTANTIATE_TEST_SUITE_P(OutOfRange, ScanInt,
                         testing::Values(Row{"2147483647", INT_MAX}, Row{"2147483648", INT_MAX},
                                         Row{"4294967295", INT_MAX}, Row{"4294967297", INT_MAX},
                                         Row{"99999999999999999999", INT_MAX},
                                         Row{"-2147483648", INT_MIN}, Row{"-2147483649", INT_MIN},
                                         Row{"-99999999999999999999", INT_MIN}));

}  // namespace
