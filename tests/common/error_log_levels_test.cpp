#include "ErrorLogLevels.h"

#include <gmock/gmock.h>

#include <climits>
#include <cwchar>

#include "item_log.h"
#include "process_log.h"
#include "row_name.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ErrorLogLevels : public testing::Test {
  protected:
    void setLevel(int level) {
        log.SetLogLevel(level);
        log.clear();
    }

    ItemLog log;

  private:
    AsProcessLog m_asProcessLog{log};
};

using Shortcut = void (*)(const char*, ...);

struct Filter {
    const char* rule;
    Shortcut write;
    int level;
    const char* item;  // null for nothing
};

class ErrorLogLevelsFilter : public ErrorLogLevels, public testing::WithParamInterface<Filter> {};

TEST_P(ErrorLogLevelsFilter, WritesFromItsOwnLevelOn) {
    setLevel(GetParam().level);
    GetParam().write("%s=%d\n", "a", 7);
    if (GetParam().item == nullptr) {
        EXPECT_THAT(log.items(), IsEmpty());
    } else {
        EXPECT_THAT(log.items(), ElementsAre(GetParam().item));
    }
}

INSTANTIATE_TEST_SUITE_P(Filters, ErrorLogLevelsFilter,
                         testing::Values(Filter{"Level0IsNeverFiltered", ERRORLOGLEVEL0, INT_MIN,
                                                "1,,,, a=7\n"},
                                         Filter{"Level0AtOne", ERRORLOGLEVEL0, 1, "1,,,, a=7\n"},
                                         Filter{"Level1AtOne", ERRORLOGLEVEL1, 1, nullptr},
                                         Filter{"Level1AtTwo", ERRORLOGLEVEL1, 2, "2,,,, a=7\n"},
                                         Filter{"Level1BelowOne", ERRORLOGLEVEL1, -1, nullptr},
                                         Filter{"Level2At47", ERRORLOGLEVEL2, 47, nullptr},
                                         Filter{"Level2At48", ERRORLOGLEVEL2, 48, "48,,,, a=7\n"},
                                         Filter{"Level2At63", ERRORLOGLEVEL2, 63, "48,,,, a=7\n"},
                                         Filter{"Level3Never", ERRORLOGLEVEL3, INT_MAX, nullptr},
                                         Filter{"Level4Never", ERRORLOGLEVEL4, INT_MAX, nullptr},
                                         Filter{"Level5Never", ERRORLOGLEVEL5, INT_MAX, nullptr}),
                         nameOfRow);

constexpr Shortcut kWriters[] = {ERRORLOGLEVEL0, ERRORLOGLEVEL1, ERRORLOGLEVEL2};
constexpr const char* kColumns[] = {"1,,,, ", "2,,,, ", "48,,,, "};

TEST_F(ErrorLogLevels, TextsAreCutAt2047Characters) {
    setLevel(63);
    const std::string longText(5000, 'x');
    for (std::size_t i = 0; i < 3; ++i) {
        log.clear();
        kWriters[i]("%s", longText.c_str());
        EXPECT_THAT(log.items(), ElementsAre(kColumns[i] + longText.substr(0, 2047)));
    }
}

TEST_F(ErrorLogLevels, TextOf2047CharactersIsWhole) {
    const std::string text(2047, 'x');
    ERRORLOGLEVEL0("%s", text.c_str());
    EXPECT_THAT(log.items(), ElementsAre("1,,,, " + text));
}

TEST_F(ErrorLogLevels, MissingFormatIsAWrongParameter) {
    setLevel(63);
    for (std::size_t i = 0; i < 3; ++i) {
        log.clear();
        kWriters[i](nullptr);
        EXPECT_THAT(log.items(),
                    ElementsAre(std::string(kColumns[i]) + "ERRORLOGLEVELx() wrong parameter"));
    }
}

// In the "C" locale no wide character beyond ASCII has a form, however much room there is.
TEST_F(ErrorLogLevels, TextThatCannotBeFormattedIsAWrongParameter) {
    const wchar_t noText[] = {static_cast<wchar_t>(0x10FFFF), L'\0'};
    ERRORLOGLEVEL0("%ls", noText);
    EXPECT_THAT(log.items(), ElementsAre("1,,,, ERRORLOGLEVELx() wrong parameter"));
}

TEST_F(ErrorLogLevels, NothingHappensWithoutALogObject) {
    errorLog = nullptr;
    for (const Shortcut write : {ERRORLOGLEVEL0, ERRORLOGLEVEL1, ERRORLOGLEVEL2, ERRORLOGLEVEL3,
                                 ERRORLOGLEVEL4, ERRORLOGLEVEL5}) {
        write("%s", "text\n");
    }
    EXPECT_THAT(log.items(), IsEmpty());
}

}  // namespace
