// Replacing in wide text, character sets and byte streams: each gives what a plain way of doing it
// gives, and writes nothing behind its room.

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "ByteStream.h"
#include "CharacterSet.h"
#include "TextTools.h"
#include "UException.h"
#include "fuzz_input.h"

namespace {

std::wstring widened(const std::string& text) {
    std::wstring wide;
    for (const char c : text) wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return wide;
}

// The text with everything replaced, one occurrence after the other, whatever it costs.
std::wstring replaced(std::wstring text, const std::wstring& what, const std::wstring& by) {
    std::size_t at = 0;
    while (at <= text.size() && (at = text.find(what, at)) != std::wstring::npos) {
        text.replace(at, what.size(), by);
        at += what.size();
    }
    return text;
}

void checkWideReplace(const std::wstring& text, const std::wstring& what, const std::wstring& by) {
    std::vector<wchar_t> buffer(text.c_str(), text.c_str() + text.size() + 1);
    const unsigned int result = wcsreplace(buffer.data(), what.c_str(), by.c_str());
    const bool isLonger = !what.empty() && by.size() > what.size();
    if (what.empty()) {
        EXPECT_EQ(result, 0U);
        EXPECT_EQ(std::wstring(buffer.data()), text);
    } else if (isLonger) {
        const bool occurs = text.find(what) != std::wstring::npos;
        EXPECT_EQ(result, occurs ? UINT_MAX : 0);
        EXPECT_EQ(std::wstring(buffer.data()), text);
    } else {
        EXPECT_EQ(result, 0U);
        EXPECT_EQ(std::wstring(buffer.data()), replaced(text, what, by));
    }
}

// Whether a set is written as one, and nothing behind it.
bool isSet(const std::string& set) {
    if (set.empty() || set[0] != '[') return false;
    const std::size_t first = set.size() > 1 && set[1] == '^' ? 2 : 1;
    // A bracket directly at the beginning is a member.
    const std::size_t end = set.find(']', first + 1);
    return end != std::string::npos && end == set.size() - 1;
}

// The formats are this test's own.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void checkSet(const std::string& text, const std::string& set, std::size_t most) {
    bool expected = false;
    if (isSet(set) && text.size() <= most) {
        std::vector<char> run(text.size() + 1);
        expected = std::sscanf(text.c_str(), ("%" + set).c_str(), run.data()) == 1 &&
                   std::strlen(run.data()) == text.size();
    }
    EXPECT_EQ(checkCharacterSet(text.c_str(), set.c_str(), most), expected);
}

void checkStream(const CString& text, int mode, const std::string& expected, std::size_t room) {
    AutoMemory out(reinterpret_cast<const unsigned char*>("before"), 6);
    const auto length = static_cast<std::size_t>(text.GetLength());
    try {
        const unsigned int size = StringToByteStream(text, out, mode);
        if (length == 0) {
            EXPECT_EQ(size, 0U);
            EXPECT_EQ(out.getSize(), 6U);
            return;
        }
        ASSERT_EQ(size, expected.size());
        ASSERT_EQ(out.getSize(), size + room);
        EXPECT_EQ(std::string(out.getPtr(), out.getPtr() + out.getSize()),
                  expected + std::string(room, '\0'));
    } catch (const UException&) {
        EXPECT_NE(mode, kStreamAsIs);
        EXPECT_EQ(std::mbstowcs(nullptr, text, 0), static_cast<std::size_t>(-1));
        EXPECT_EQ(out.getSize(), 6U);
    }
}

void checkStreams(const std::string& bytes) {
    const CString text(bytes.data(), static_cast<int>(bytes.size()));
    const std::string line = bytes.c_str();
    std::vector<wchar_t> wide(line.size() + 1);
    const std::size_t count = std::mbstowcs(wide.data(), line.c_str(), wide.size());
    const std::size_t known = count == static_cast<std::size_t>(-1) ? 0 : count;
    const auto* const first = reinterpret_cast<const char*>(wide.data());
    checkStream(text, kStreamAsIs, bytes, 2);
    checkStream(text, kStreamConverted, line, 2);
    checkStream(text, kStreamWide, std::string(first, known * sizeof(wchar_t)), 8);
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string text = input.line();
    const std::wstring what = widened(input.line());
    const std::wstring by = widened(input.line());
    checkWideReplace(widened(text), what, by);

    const std::string set = input.flag() ? "[" + input.line() + "]" : input.line();
    checkSet(text, set, input.below(256));
    checkStreams(input.text());
}
