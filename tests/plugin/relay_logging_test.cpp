#include <cstdlib>

#include "relay_fixture.h"
#include "sandbox_main.h"

// The words in a service answer that switch the log's level.

namespace {

using testing::IsEmpty;

struct Words {
    const char* name;
    const char* answer;
    std::vector<std::string> levels;
};

class LoggingWords : public Relay, public testing::WithParamInterface<Words> {};

TEST_P(LoggingWords, InAServiceAnswerSetTheLevelOnceThePageHasSeenThem) {
    launch(page);
    answer(GetParam().answer);
    const auto levels = [this] {
        std::vector<std::string> found = log.events();
        std::erase_if(found, [](const std::string& e) { return e.rfind("<SetLogLevel", 0) != 0; });
        return found;
    };
    EXPECT_THAT(levels(), IsEmpty());
    answer("LOGGING_DISABLE in the page's own words means nothing");
    EXPECT_EQ(levels(), GetParam().levels);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, LoggingWords,
    testing::Values(Words{"Neither", "logging_disable LOGGING-ENABLE", {}},
                    Words{"Disable", "xLOGGING_DISABLEx", {"<SetLogLevel(31)>"}},
                    Words{"Enable", "LOGGING_ENABLE", {"<SetLogLevel(63)>"}},
                    Words{"EnabledAsFirst", "LOGGING_ENABLED", {"<SetLogLevel(63)>"}},
                    Words{"Both",
                          "LOGGING_ENABLE,LOGGING_DISABLE",
                          {"<SetLogLevel(31)>", "<SetLogLevel(63)>"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Relay, LoggingWordsAreIgnoredWhenThePagesResultIsSkipped) {
    probe(page);
    answer("LOGGING_DISABLE");
    answer("x");
    EXPECT_FALSE(log.contains("SetLogLevel"));
}

class LoggingSettings : public Relay {
  protected:
    const std::string m_home = std::getenv("HOME");
    const std::string m_file = m_home + "/Library/Zerva/zerva.conf";

    // A whole round in which the service answers `text`.
    void round(const char* text) {
        launch(page);
        answer(text);
        answer("");
    }
};

TEST_F(LoggingSettings, AreRewrittenForTheUserButNeverByRoot) {
    writeFile(m_file, "default_log_level=63\n");
    round("LOGGING_DISABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=63\n" : "default_log_level=31\n");
}

TEST_F(LoggingSettings, AreRewrittenWithoutALogObjectToo) {
    removeLog();
    writeFile(m_file, "default_log_level=31\n");
    round("LOGGING_ENABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=31\n" : "default_log_level=63\n");
}

TEST_F(LoggingSettings, EnableWinsOverDisable) {
    writeFile(m_file, "default_log_level=15\n");
    round("LOGGING_ENABLE LOGGING_DISABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=15\n" : "default_log_level=63\n");
}

}  // namespace
