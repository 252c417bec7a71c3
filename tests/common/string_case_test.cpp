#include "StringCase.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

TEST(StringCase, ConvertersReturnTheirArgument) {
    char text[] = "aB1";
    EXPECT_EQ(_strupr(text), text);
    EXPECT_STREQ(text, "AB1");
    EXPECT_EQ(_strlwr(text), text);
    EXPECT_STREQ(text, "ab1");
}

TEST(StringCase, NullTextsAreTolerated) {
    EXPECT_EQ(_strupr(nullptr), nullptr);
    EXPECT_EQ(_strlwr(nullptr), nullptr);
    EXPECT_EQ(_strcmpi(nullptr, nullptr), 0);
    EXPECT_EQ(_strcmpi("A", nullptr), 'a');
    EXPECT_EQ(_strcmpi(nullptr, "A"), -'a');
}

TEST(StringCase, EveryPairOfBytesComparesByItsAsciiFolding) {
    const auto folded = [](int byte) { return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte; };
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            // Alone, and at the end of a text that is compared eight bytes at a time.
            for (const std::string& before : {std::string(), std::string("SevenCh")}) {
                const std::string left = before + static_cast<char>(a);
                const std::string right = before + static_cast<char>(b);
                ASSERT_EQ(_strcmpi(left.c_str(), right.c_str()), folded(a) - folded(b));
                ASSERT_EQ(_stricmp(left.c_str(), right.c_str()), folded(a) - folded(b));
            }
        }
    }
}

TEST(StringCase, ADifferenceIsFoundAtEveryPlaceOfALongText) {
    for (std::size_t length = 1; length < 200; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            const std::string a(length, 'Q');
            std::string b(length, 'q');
            b[at] = 'r';
            ASSERT_EQ(_strcmpi(a.c_str(), b.c_str()), 'q' - 'r');
            ASSERT_EQ(_strcmpi(b.c_str(), a.c_str()), 'r' - 'q');
            ASSERT_EQ(_strcmpi(a.c_str(), a.substr(0, at).c_str()), 'q');
        }
    }
}

}  // namespace
