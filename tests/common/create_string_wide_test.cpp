// Wide text as 8-bit text, and what is on record when it cannot be converted.

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "createString.h"
#include "record_log.h"
#include "text_of.h"

namespace {

const wchar_t* const kNull = nullptr;
constexpr std::size_t kFailed = static_cast<std::size_t>(-1);

// While it lives, the C library's conversion answers what the script says, and goes its own way
// when that has ended.
class ScriptedConversion {
  public:
    struct Answer {
        std::size_t result;
        int error;
    };

    explicit ScriptedConversion(std::vector<Answer> answers) : m_answers(std::move(answers)) {
        current = this;
    }
    ~ScriptedConversion() { current = nullptr; }
    ScriptedConversion(const ScriptedConversion&) = delete;
    ScriptedConversion& operator=(const ScriptedConversion&) = delete;

    bool HasEnded() const { return m_rooms.size() >= m_answers.size(); }
    std::size_t Next(std::size_t room) {
        const Answer answer = m_answers[m_rooms.size()];
        m_rooms.push_back(room);
        errno = answer.error;
        return answer.result;
    }
    // The room for the text that each scripted conversion was given.
    const std::vector<std::size_t>& Rooms() const { return m_rooms; }

    static ScriptedConversion* current;

  private:
    std::vector<Answer> m_answers;
    std::vector<std::size_t> m_rooms;
};

ScriptedConversion* ScriptedConversion::current = nullptr;

}  // namespace

// The linker sends every call of wcstombs here.
extern "C" std::size_t __real_wcstombs(char* to, const wchar_t* from, std::size_t room);
extern "C" std::size_t __wrap_wcstombs(char* to, const wchar_t* from, std::size_t room) {
    ScriptedConversion* const script = ScriptedConversion::current;
    if (script == nullptr || script->HasEnded()) return __real_wcstombs(to, from, room);
    return script->Next(room);
}

namespace {

TEST(CreateStringWide, ConvertsTheWholeTextWhateverTheLength) {
    EXPECT_EQ(textOf(createString(L"abcdef")), "abcdef");
    EXPECT_EQ(textOf(createString(L"abcdef", 3, "")), "abcdef");
    EXPECT_EQ(textOf(createString(L"abcdef", 0, "")), "abcdef");
    EXPECT_EQ(textOf(createStringLimit(L"abcdef", 3)), "abcdef");
    EXPECT_EQ(textOf(createStringLimit(L"abcdef", 99)), "abcdef");
}

TEST(CreateStringWide, StandardStringsEndAtTheirFirstNul) {
    EXPECT_EQ(textOf(createString(std::wstring(L"ab\0c", 4))), "ab");
}

TEST(CreateStringWide, NullTextGivesTheFallbackAndLogsNothing) {
    const RecordLog log(63);
    EXPECT_EQ(textOf(createString(kNull, -1, "dflt")), "dflt");
    EXPECT_EQ(textOf(createString(kNull, -1, nullptr)), "");
    EXPECT_EQ(textOf(createStringLimit(kNull, 3)), "");
    EXPECT_TRUE(log.items().empty());
}

TEST(CreateStringWide, FollowsTheCurrentLocale) {
    if (setlocale(LC_ALL, "C.UTF-8") == nullptr) GTEST_SKIP() << "there is no C.UTF-8 here";
    EXPECT_EQ(textOf(createString(L"\u20AC", -1, "dflt")), "\xE2\x82\xAC");
    setlocale(LC_ALL, "C");
}

TEST(CreateStringWide, BufferHasFiveBytesToSpareAndLimitsTheConversion) {
    const ScriptedConversion script({{7, 0}, {3, 0}});
    EXPECT_EQ(textOf(createString(L"abcdefg")), std::string(3, '\0')) << "zeros to begin with";
    EXPECT_EQ(script.Rooms(), (std::vector<std::size_t>{0, 12}));
}

struct Failure {
    const char* name;
    const wchar_t* text;
    std::vector<ScriptedConversion::Answer> answers;
    std::string message;
};

class CreateStringWideFailure : public testing::TestWithParam<Failure> {};

TEST_P(CreateStringWideFailure, GivesTheFallbackAndIsLoggedAtLevelTwo) {
    for (const int level : {1, 2, 63}) {
        const RecordLog log(level);
        const ScriptedConversion script(GetParam().answers);
        errno = EINTR;
        EXPECT_EQ(textOf(createString(GetParam().text, -1, "dflt")), "dflt");
        ASSERT_EQ(log.items().size(), level < 2 ? 0U : 1U);
        if (level >= 2) {
            EXPECT_EQ(withoutLine(log.items()[0]),
                      "2, /m_strings, LINE, ::createString, " + GetParam().message + "\n");
        }
    }
}

TEST_P(CreateStringWideFailure, GivesTheFallbackWithoutALogToo) {
    const ScriptedConversion script(GetParam().answers);
    EXPECT_EQ(textOf(createString(GetParam().text, -1, "dflt")), "dflt");
}

std::string withError(const std::string& message, int error) {
    return message + std::to_string(error) + ")";
}

const std::string kNoSize = "Failed while obtaining buffer size (WideCharToMultiByte() error: ";
const std::string kNoMemory = "Failed to allocate memory (error: ";
const std::string kNotConverted =
    "Failed to convert wide-char string to multi-byte (WideCharToMultiByte() error: ";

INSTANTIATE_TEST_SUITE_P(
    Steps, CreateStringWideFailure,
    testing::Values(
        Failure{"EmptyText", L"", {}, withError(kNoSize, 0)},
        Failure{"CharacterTheLocaleHasNot", L"\u20AC", {}, withError(kNoSize, EILSEQ)},
        Failure{
            "SizeBeyondABuffer", L"a", {{std::size_t{INT_MAX} - 4, 0}}, withError(kNoMemory, 0)},
        Failure{
            "ConversionToNothing", L"a", {{1, 0}, {0, EINVAL}}, withError(kNotConverted, EINVAL)},
        Failure{"ConversionThatFails",
                L"a",
                {{1, 0}, {kFailed, EILSEQ}},
                withError(kNotConverted, EILSEQ)}),
    [](const auto& row) { return row.param.name; });

}  // namespace
