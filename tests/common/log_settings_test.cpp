#include <sys/resource.h>

#include <climits>

#include "ULogSettings.h"
#include "row_name.h"
#include "temporary_home.h"

namespace {

class LogSettings : public TemporaryHome {
  protected:
    // Asking must never change the user's file.
    ~LogSettings() override {
        if (!m_given.empty()) {
            EXPECT_EQ(readSettings(), m_given);
        }
    }
    void given(const std::string& bytes) {
        m_given = bytes;
        writeSettings(bytes);
    }

  private:
    std::string m_given;
};

struct LevelRow {
    const char* rule;
    std::string file;
    unsigned int level;
    unsigned int pluginLevel;
};
class LogLevel : public LogSettings, public testing::WithParamInterface<LevelRow> {};

TEST_P(LogLevel, OfTheDefaultLine) {
    given(GetParam().file);
    EXPECT_EQ(ULogSettings::getLogLevel(), GetParam().level);
    EXPECT_EQ(ULogSettings::getModuleLogLevel(nullptr), GetParam().level);
}

TEST_P(LogLevel, OfAModule) {
    given(GetParam().file);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo_plugin"), GetParam().pluginLevel);
}

const std::string kLong(300, 'x');

INSTANTIATE_TEST_SUITE_P(
    Rows, LogLevel,
    testing::Values(
        LevelRow{"EmptyLineIsInert", "\n", 63, 63},
        LevelRow{"DefaultHoldsForModules", "default_log_level=31\n", 31, 31},
        LevelRow{"ZeroIsALevel", "default_log_level=0\n", 0, 0},
        LevelRow{"BandsAreNotEnforced", "default_log_level=1000\n", 1000, 1000},
        LevelRow{"NegativeIsUsedAsItIs", "default_log_level=-2\n", 4294967294u, 4294967294u},
        LevelRow{"ModuleOverridesDefault", "default_log_level=5\nnevo_plugin_log_level=10\n", 5,
                 10},
        LevelRow{"ModuleBeforeDefault", "nevo_plugin_log_level=10\ndefault_log_level=5\n", 5, 10},
        LevelRow{"ModuleWithoutDefault", "nevo_plugin_log_level=10\n", 63, 10},
        LevelRow{"ModuleZeroIsALevel", "nevo_plugin_log_level=0\n", 63, 0},
        LevelRow{"OtherModuleIsInert", "nevo_log_level=10\nevo_plugin_log_level=11\n", 63, 63},
        LevelRow{"CommentIsInert", "#default_log_level=5\n#nevo_plugin_log_level=10\n", 63, 63},
        LevelRow{"LastModuleLineWins", "nevo_plugin_log_level=1\nnevo_plugin_log_level=2\n", 63, 2},
        LevelRow{"UnreadableLastModuleLineUnsets",
                 "nevo_plugin_log_level=1\nnevo_plugin_log_level=abc\n", 63, 63},
        LevelRow{"UnreadableModuleIsUnset", "default_log_level=5\nnevo_plugin_log_level=abc\n", 5,
                 5},
        LevelRow{"MinusOneIsUnset", "default_log_level=5\nnevo_plugin_log_level=-1\n", 5, 5},
        LevelRow{"UnreadableDefault", "default_log_level=abc\n", 63, 63},
        LevelRow{"EmptyDefault", "default_log_level=\n", 63, 63},
        LevelRow{"LeadingBlanksOfTheValue", "default_log_level= \t 7\n", 7, 7},
        LevelRow{"SignOfTheValue", "default_log_level=+7\n", 7, 7},
        LevelRow{"RestOfTheLineIsIgnored", "default_log_level=7 or so\n", 7, 7},
        LevelRow{"CarriageReturns", "default_log_level=7\r\nnevo_plugin_log_level=8\r\n", 7, 8},
        LevelRow{"NoFinalLineEnd", "default_log_level=7\nnevo_plugin_log_level=8", 7, 8},
        LevelRow{"KeyAfterABlank", " default_log_level=7\n nevo_plugin_log_level=8\n", 63, 63},
        LevelRow{"KeysAreCaseSensitive", "Default_log_level=7\nNevo_plugin_log_level=8\n", 63, 63},
        LevelRow{"BlankBeforeTheSeparator", "default_log_level =7\n", 63, 63},
        LevelRow{"PrefixAlone", "default_log_level", 63, 63},
        LevelRow{"TooLargeIsTheLargest", "default_log_level=99999999999999999999\n", INT_MAX,
                 INT_MAX},
        LevelRow{"TooSmallIsTheSmallest", "default_log_level=-2147483649\n", 2147483648u,
                 2147483648u},
        LevelRow{"KeyInsideALine", "x default_log_level=7\n", 63, 63},
        LevelRow{"KeyAtTheSecondPieceOfALongLine", std::string(255, 'x') + "default_log_level=7\n",
                 7, 7},
        LevelRow{"KeyBesideTheSecondPiece",
                 std::string(254, 'x') + "default_log_level=7\n" + std::string(256, 'x') +
                     "nevo_plugin_log_level=8\n",
                 63, 63},
        LevelRow{"KeyAtTheThirdPiece", std::string(510, 'x') + "nevo_plugin_log_level=8\n", 63, 8},
        LevelRow{"LineAfterALongLine", kLong + "\ndefault_log_level=7\n", 7, 7},
        LevelRow{"ValueCutByThePiece", "default_log_level=" + std::string(236, ' ') + "12\n", 1, 1},
        LevelRow{"NulEndsTheText", std::string("default_log_level=1\0002\n", 22), 1, 1},
        LevelRow{"NulBeforeTheKey", std::string("\0default_log_level=7\n", 21), 63, 63},
        LevelRow{"LineAfterALineOfNuls", std::string(10, '\0') + "\ndefault_log_level=7\n", 7, 7},
        LevelRow{"BinaryRubbish", std::string("\xff\xfe\x80\x00\x01\x1b", 6) + kLong, 63, 63}),
    nameOfRow);

TEST_F(LogSettings, TheFirstDefaultLineCountsAloneButTheLastForModules) {
    given("default_log_level=1\ndefault_log_level=2\n");
    EXPECT_EQ(ULogSettings::getLogLevel(), 1u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo_plugin"), 2u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel(nullptr), 2u);
}

TEST_F(LogSettings, AnUnreadableLastDefaultLineIsTheDefaultForModules) {
    given("default_log_level=1\ndefault_log_level=x\n");
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo_plugin"), 63u);
}

TEST_F(LogSettings, AModuleCalledDefaultHasTheDefaultLine) {
    given("default_log_level=9\n");
    EXPECT_EQ(ULogSettings::getModuleLogLevel("default"), 9u);
}

TEST_F(LogSettings, AnEmptyModuleNameIsAName) {
    given("_log_level=9\n");
    EXPECT_EQ(ULogSettings::getModuleLogLevel(""), 9u);
}

TEST_F(LogSettings, AModuleNameLongerThanAnyLineHasNoLevel) {
    const std::string module(5000, 'm');
    given(module + "_log_level=9\n");
    EXPECT_EQ(ULogSettings::getModuleLogLevel(module.c_str()), 63u);
}

TEST_F(LogSettings, AChangeByHandTakesEffectAtTheNextCall) {
    given("default_log_level=1\n");
    EXPECT_EQ(ULogSettings::getLogLevel(), 1u);
    given("default_log_level=2\n");
    EXPECT_EQ(ULogSettings::getLogLevel(), 2u);
}

struct SizeRow {
    const char* rule;
    std::string file;
    unsigned int size;
};
class RotationSize : public LogSettings, public testing::WithParamInterface<SizeRow> {};

TEST_P(RotationSize, OfTheFile) {
    given(GetParam().file);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), GetParam().size);
}

constexpr unsigned int kUsualSize = 5242880;

INSTANTIATE_TEST_SUITE_P(
    Rows, RotationSize,
    testing::Values(
        SizeRow{"NoLine", "default_log_level=63\n", kUsualSize},
        SizeRow{"EqualSign", "log_file_size=1000\n", 1000},
        SizeRow{"Blank", "log_file_size 1000\n", 1000},
        SizeRow{"AnySeparator", "log_file_sizeX1000\n", 1000},
        SizeRow{"TwoSeparators", "log_file_size==1000\n", kUsualSize},
        SizeRow{"SeparatorAndBlank", "log_file_size= 1000\n", 1000},
        SizeRow{"DigitInTheSeparatorsPlace", "log_file_size1000\n", 0},
        SizeRow{"FirstLineCounts", "log_file_size=1\nlog_file_size=2\n", 1},
        SizeRow{"UnreadableFirstLineCounts", "log_file_size=x\nlog_file_size=2\n", kUsualSize},
        SizeRow{"Zero", "log_file_size=0\n", 0},
        SizeRow{"MinusOneIsNever", "log_file_size=-1\n", 4294967295u},
        SizeRow{"TooLarge", "log_file_size=4294967295\n", INT_MAX},
        SizeRow{"KeyAlone", "log_file_size\n", kUsualSize},
        SizeRow{"KeyAloneAtTheEnd", "123456789012345678\nlog_file_size", kUsualSize},
        SizeRow{"SeparatorAloneAtTheEnd", "123456789012345678\nlog_file_size=", kUsualSize},
        SizeRow{"CommentIsInert", "#log_file_size=1000\n", kUsualSize},
        SizeRow{"BlankBeforeTheKey", " log_file_size=1000\n", kUsualSize}),
    nameOfRow);

TEST_F(LogSettings, RotationSizeOfAMissingFileMakesNone) {
    makeLibrary();
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    EXPECT_FALSE(std::filesystem::exists(settingsFolder()));
}

TEST_F(LogSettings, AFolderInTheFilesPlaceReadsAsEmpty) {
    std::filesystem::create_directories(settingsPath());
    const unsigned int mode = modeOf(settingsPath());
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    EXPECT_EQ(modeOf(settingsPath()), mode);
}

TEST_F(LogSettings, ANamedPipeInTheFilesPlaceReadsAsEmptyAtOnce) {
    std::filesystem::create_directories(settingsFolder());
    ASSERT_EQ(mkfifo(settingsPath().c_str(), 0600), 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
}

TEST_F(LogSettings, NoCallKeepsTheFileOpen) {
    given("default_log_level=1\n");
    rlimit files{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    files.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(ULogSettings::getLogLevel(), 1u);
        ASSERT_EQ(ULogSettings::getModuleLogLevel("nevo"), 1u);
        ASSERT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    }
}

}  // namespace
