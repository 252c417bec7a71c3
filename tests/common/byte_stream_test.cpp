#include "ByteStream.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "UException.h"
#include "record_log.h"

namespace {

// The how many-th next conversion to bytes fails, counted from 1; 0 for none.
int failingConversion = 0;

}  // namespace

// The linker sends every call of wcstombs here.
extern "C" {
std::size_t __real_wcstombs(char* to, const wchar_t* from, std::size_t size);
std::size_t __wrap_wcstombs(char* to, const wchar_t* from, std::size_t size) {
    if (failingConversion > 0 && --failingConversion == 0) return static_cast<std::size_t>(-1);
    return __real_wcstombs(to, from, size);
}
}

namespace {

// The text is what the C library's locale says it is.
class ByteStream : public testing::Test {
  protected:
    ByteStream() { setlocale(LC_ALL, "C.UTF-8"); }
    ~ByteStream() override { setlocale(LC_ALL, "C"); }
};

std::string bytesOf(const AutoMemory& memory) {
    return {reinterpret_cast<const char*>(memory.getPtr()), memory.getSize()};
}

std::string wideBytes(const std::u32string& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * 4};
}

std::string withZeros(std::string text, std::size_t count) { return text.append(count, '\0'); }

TEST_F(ByteStream, ModeZeroIsTheTextAsItIsAndTwoZeros) {
    AutoMemory out;
    EXPECT_EQ(StringToByteStream(CString("a\0b", 3), out, 0), 3u);
    EXPECT_EQ(bytesOf(out), withZeros(std::string("a\0b", 3), 2));
    EXPECT_EQ(StringToByteStream(CString("\xff\xfe"), out, 0), 2u);
    EXPECT_EQ(bytesOf(out), withZeros("\xff\xfe", 2));
}

TEST_F(ByteStream, ModeTwoIsWideCharactersAndEightZeros) {
    AutoMemory out;
    EXPECT_EQ(StringToByteStream(CString("a\xc3\xa4"), out, 2), 8u);
    EXPECT_EQ(bytesOf(out), withZeros(wideBytes(U"a\u00e4"), 8));
}

TEST_F(ByteStream, AnyOtherModeIsTheTextConvertedThereAndBack) {
    for (const int mode : {1, 3, -1}) {
        AutoMemory out;
        EXPECT_EQ(StringToByteStream(CString("a\xc3\xa4"), out, mode), 3u);
        EXPECT_EQ(bytesOf(out), withZeros("a\xc3\xa4", 2));
    }
}

TEST_F(ByteStream, ConvertingEndsAtTheFirstNul) {
    AutoMemory out;
    EXPECT_EQ(StringToByteStream(CString("a\0b", 3), out, 1), 1u);
    EXPECT_EQ(bytesOf(out), withZeros("a", 2));
    EXPECT_EQ(StringToByteStream(CString("\0b", 2), out, 2), 0u);
    EXPECT_EQ(bytesOf(out), withZeros("", 8));
}

TEST_F(ByteStream, AnEmptyTextLeavesTheMemoryAlone) {
    AutoMemory out(5);
    for (const int mode : {0, 1, 2}) EXPECT_EQ(StringToByteStream(CString(), out, mode), 0u);
    EXPECT_EQ(StringToByteStream(L"", out, 0), 0u);
    EXPECT_EQ(StringToByteStream(static_cast<const wchar_t*>(nullptr), out, 0), 0u);
    EXPECT_EQ(out.getSize(), 5u);
}

TEST_F(ByteStream, WideTextIsConverted) {
    AutoMemory out;
    EXPECT_EQ(StringToByteStream(L"a\u00e4", out, 0), 3u);
    EXPECT_EQ(bytesOf(out), withZeros("a\xc3\xa4", 2));
}

template <class Convert>
void expectRaised(const char* message, Convert convert) {
    const RecordLog log;
    AutoMemory out(5);
    try {
        convert(out);
        FAIL() << "nothing was raised";
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetFunctionName(), "StringToByteStream()");
        EXPECT_STREQ(e.GetErrorMessage(), message);
    }
    EXPECT_EQ(out.getSize(), 5u);
    EXPECT_EQ(log.items().size(), 1u);
}

TEST_F(ByteStream, ATextThatIsNoneInTheLocaleIsRaised) {
    for (const int mode : {1, 2}) {
        expectRaised("EXCEPTION - MultiByteToWideChar() failed",
                     [mode](AutoMemory& out) { StringToByteStream(CString("\xff"), out, mode); });
    }
}

TEST_F(ByteStream, AWideTextThatTheLocaleDoesNotHaveIsRaised) {
    setlocale(LC_ALL, "C");
    expectRaised("EXCEPTION - WideCharToMultiByte() failed",
                 [](AutoMemory& out) { StringToByteStream(L"\u20ac", out, 0); });
}

TEST_F(ByteStream, SaysWhichConversionToBytesFailed) {
    const char* const messages[] = {"EXCEPTION - WideCharToMultiByte() failed",
                                    "EXCEPTION - WideCharToMultiByte() || failed"};
    for (int n = 1; n <= 2; ++n) {
        failingConversion = n;
        expectRaised(messages[n - 1], [](AutoMemory& out) { StringToByteStream("a", out, 1); });
        failingConversion = n;
        expectRaised(messages[n - 1], [](AutoMemory& out) { StringToByteStream(L"a", out, 0); });
    }
}

}  // namespace
