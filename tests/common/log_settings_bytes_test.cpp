// Files of any bytes, read and written as the model of the settings has it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "ULogSettings.h"
#include "log_settings_model.h"
#include "random_seed.h"
#include "temporary_home.h"

namespace {

namespace fs = std::filesystem;

class SettingsBytes : public TemporaryHome {
  protected:
    // Asks for everything, which must leave the file alone, and sets the level twice.
    void expectLikeTheModel(const std::string& bytes) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        SettingsModel model{bytes};
        writeSettings(bytes);
        ASSERT_EQ(ULogSettings::getLogLevel(), model.level());
        ASSERT_EQ(ULogSettings::getModuleLogLevel("nevo"), model.moduleLevel("nevo"));
        ASSERT_EQ(ULogSettings::getFileRotationSize(), model.rotationSize());
        ASSERT_EQ(readSettings(), bytes);
        for (const int level : {7, 631, 631}) {
            ULogSettings::setLogLevel(static_cast<unsigned int>(level), 0);
            model.setLevel(level);
            ASSERT_EQ(readSettings(), model.bytes) << "after level " << level;
        }
    }
};

TEST_F(SettingsBytes, LinesOf254To600CharactersAreReadInPieces) {
    const std::string key = "default_log_level=42\n";
    for (std::size_t length = 254; length <= 600 && !HasFatalFailure(); ++length) {
        const std::string filling(length, 'x');
        expectLikeTheModel(filling + "\n" + key);
        expectLikeTheModel(filling + key + "rest\n");
        expectLikeTheModel("default_log_level=42" + filling + "\nrest\n");
        expectLikeTheModel(filling + "log_file_size=900\nnevo_log_level=5");
        expectLikeTheModel(filling);
    }
}

TEST_F(SettingsBytes, BinaryFilesAreReadByTheSameRules) {
    const std::string words[] = {"default_log_level=",
                                 "nevo_log_level=",
                                 "log_file_size=",
                                 "\n",
                                 "\n",
                                 "63",
                                 "-7",
                                 "\r\n",
                                 std::string(1, '\0'),
                                 std::string(200, '\0'),
                                 "\xFF\xFE",
                                 "#",
                                 std::string(120, 'x'),
                                 " ",
                                 "\x1A"};
    std::mt19937 random(randomSeed());
    for (int round = 0; round < randomRounds(5000) && !HasFatalFailure(); ++round) {
        std::string bytes;
        for (std::size_t parts = random() % 12; parts > 0; --parts) {
            bytes += words[random() % std::size(words)];
        }
        expectLikeTheModel(bytes);
    }
}

TEST_F(SettingsBytes, AMegabyteWithoutALineEndGetsItsDefaultLineBehindIt) {
    for (const char filling : {'x', '\0', '\xFF'}) {
        const std::string bytes(1 << 20, filling);
        writeSettings(bytes);
        EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
        EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
        ULogSettings::setLogLevel(5, 0);
        EXPECT_TRUE(readSettings() == bytes + "\ndefault_log_level=5\n");
    }
}

// Levels that are negative or do not fit.

struct Level {
    unsigned int level;
    const char* written;
};

TEST_F(SettingsBytes, AnyLevelIsWrittenAsASignedNumberAndReadBack) {
    for (const Level& row : {Level{0, "0"}, Level{2147483647u, "2147483647"},
                             Level{2147483648u, "-2147483648"}, Level{4294967295u, "-1"}}) {
        writeSettings("default_log_level=63\n");
        ULogSettings::setLogLevel(row.level, 0);
        EXPECT_EQ(readSettings().rfind(std::string("default_log_level=") + row.written + "\n", 0),
                  0u);
        EXPECT_EQ(ULogSettings::getLogLevel(), row.level);
    }
}

// Home folders that are none.

struct Home {
    const char* rule;
    const char* value;  // null: unset
};
class StrangeHome : public TemporaryHome, public testing::WithParamInterface<Home> {};

TEST_P(StrangeHome, GivesDefaults) {
    const std::string before = home();
    std::ofstream(before + "/file").close();
    fs::current_path(before);
    if (GetParam().value != nullptr) {
        setenv("HOME", GetParam().value, 1);
    } else {
        unsetenv("HOME");
    }
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    setenv("HOME", before.c_str(), 1);
    fs::current_path("/");
    EXPECT_EQ(std::distance(fs::directory_iterator(before), {}), 1) << "the file, as it was";
    EXPECT_EQ(fs::file_size(before + "/file"), 0u);
}

const std::string kTooLong(5000, 'x');

INSTANTIATE_TEST_SUITE_P(
    Homes, StrangeHome,
    testing::Values(Home{"ThatIsMissing", "/does/not/exist"}, Home{"ThatIsRelative", "nowhere"},
                    Home{"ThatIsAFile", "file"}, Home{"ThatMayNotBeWritten", "/usr"},
                    Home{"ThatIsADevice", "/dev/null"}, Home{"ThatIsTooLong", kTooLong.c_str()}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST_F(SettingsBytes, AnUnsetHomeIsThatOfTheDatabase) {
    const std::string before = home();
    unsetenv("HOME");
    fs::create_directories("/home/user/Library");
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u);
    EXPECT_TRUE(fs::exists("/home/user/Library/Zerva/zerva.conf"));
    fs::remove_all("/home/user/Library");
    setenv("HOME", before.c_str(), 1);
    EXPECT_FALSE(fs::exists(settingsPath()));
}

}  // namespace
