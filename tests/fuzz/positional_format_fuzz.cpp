// A template and the values for its places: the text is what a list of characters and places
// becomes, so that no value's text is ever taken for a place or for an escape.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "StrFormat.h"
#include "fuzz_input.h"

namespace {

// A character, or a place.
struct Token {
    bool isPlace;
    char text;  // a place's digit

    bool isPlaceOf(char digit) const { return isPlace && text == digit; }
};

// The template over again, as a list in which nothing can be mistaken for anything else.
class Model {
  public:
    explicit Model(const std::string& text) {
        for (std::size_t at = 0; at < text.size(); ++at) {
            const char next = at + 1 < text.size() ? text[at + 1] : '\0';
            const bool isPlace = text[at] == '%' && next >= '0' && next <= '9';
            m_tokens.push_back({isPlace, isPlace ? next : text[at]});
            if (isPlace || (text[at] == '%' && next == '%')) ++at;
        }
    }

    void fill(const std::string& value, bool append) {
        char lowest = '9' + 1;
        for (const Token& token : m_tokens) {
            if (token.isPlace) lowest = std::min(lowest, token.text);
        }
        if (lowest <= '9') {
            replace(lowest, value);
            m_read.clear();
        } else if (append) {
            for (const char c : ", " + value) m_tokens.push_back({false, c});
        }
    }

    // A text that is not empty and was read stays until a value has found a place.
    const std::string& read() {
        if (m_read.empty()) {
            for (const Token& token : m_tokens) {
                if (token.isPlace) m_read += '%';
                m_read += token.text;
            }
        }
        return m_read;
    }

  private:
    void replace(char digit, const std::string& value) {
        std::vector<Token> filled;
        for (const Token& token : m_tokens) {
            if (!token.isPlaceOf(digit)) {
                filled.push_back(token);
                continue;
            }
            for (const char c : value) filled.push_back({false, c});
        }
        m_tokens = filled;
    }

    std::vector<Token> m_tokens;
    std::string m_read;
};

// Puts one value in, in one of the ways there are. Returns its text.
std::string addValue(StrFormat& format, FuzzInput& input) {
    switch (input.below(4)) {
        case 0: {
            const auto number = static_cast<int>(input.number());
            format.arg(number);
            return std::to_string(number);
        }
        case 1: {
            const std::string value = input.line();
            format.arg(value.c_str());
            return value;
        }
        default: {
            const std::string value = input.line();
            format.arg(CString(value.c_str()));
            return value;
        }
    }
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string text = input.line();
    StrFormat format(text.c_str());
    Model model(text);
    bool append = false;
    for (int i = 0; i < 20 && !input.isEmpty(); ++i) {
        switch (input.below(4)) {
            case 0:
                append = input.flag();
                format.AppendIfNoPlaceholder(append);
                break;
            case 1:
                EXPECT_STREQ(format, model.read().c_str());
                break;
            default:
                model.fill(addValue(format, input), append);
        }
    }
    EXPECT_STREQ(format, model.read().c_str());
    EXPECT_TRUE(format == model.read().c_str());
}
