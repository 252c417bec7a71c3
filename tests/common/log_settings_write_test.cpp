// What the settings write, as an ordinary user.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <vector>

#include "ULogSettings.h"
#include "log_file.h"
#include "log_settings_model.h"
#include "on_threads.h"
#include "row_name.h"
#include "temporary_home.h"

namespace {

namespace fs = std::filesystem;

class LogSettingsAsUser : public TemporaryHome {
  protected:
    // The whole file after one `setLogLevel`.
    std::string afterSetting(const std::string& before, unsigned int level) {
        writeSettings(before);
        ULogSettings::setLogLevel(level, 0);
        return readSettings();
    }
};

std::string templateWith(const std::string& level) {
    const std::string rule(74, '#');
    return rule +
           "\n"
           "# This file contain Zerva client components settings\n"
           "# \n"
           "# \n"
           "# BASIC     31   Value use to provide basic logs which include user friendly messages, "
           "warnings, and errors.\n"
           "#                Valid values are in the range 0 to 31, the highest setting is 31.\n"
           "# EXTENDED  63   Set to provide extended log level.\n"
           "#                Valid values are in the range of 32 to 63, the highest setting is "
           "63.\n" +
           rule +
           "\n\n\n\n"
           "# default log level for all zerva components\n"
           "default_log_level=" +
           level +
           "\n\n\n\n"
           "# nevo core log level. This setting is used to override the default log level set by "
           "default_log_level setting for nevo component\n"
           "#nevo_log_level=63\n\n\n\n"
           "# nevo NPAPI plugin log level. This setting is used to override the default log level "
           "set by default_log_level setting for nevo NPAPI plugin\n"
           "#nevo_plugin_log_level=63\n\n\n\n"
           "# endpoint secutity NPAPI plugin. This setting is used to override the default log "
           "level set by default_log_level setting for endpoint secutity NPAPI plugin\n"
           "#ovra_plugin_log_level=63\n\n\n\n"
           "# TesselClient. This setting is used to override the default log level set by "
           "default_log_level setting for TesselClient application\n"
           "#tessel_client_log_level=63\n\n";
}

TEST_F(LogSettingsAsUser, AskingForTheLevelMakesAMissingFile) {
    makeLibrary();
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(readSettings(), templateWith("63"));
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
    EXPECT_EQ(modeOf(settingsFolder()), 0750u);
}

TEST_F(LogSettingsAsUser, AskingForAModulesLevelMakesAMissingFile) {
    makeLibrary();
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo_plugin"), 63u);
    EXPECT_EQ(readSettings(), templateWith("63"));
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
}

TEST_F(LogSettingsAsUser, AskingForNoModulesLevelMakesAMissingFile) {
    makeLibrary();
    EXPECT_EQ(ULogSettings::getModuleLogLevel(nullptr), 63u);
    EXPECT_EQ(readSettings(), templateWith("63"));
}

TEST_F(LogSettingsAsUser, AMissingFileIsMadeWithTheLevelSet) {
    makeLibrary();
    ULogSettings::setLogLevel(7, 0);
    EXPECT_EQ(readSettings(), templateWith("7"));
    EXPECT_EQ(ULogSettings::getLogLevel(), 7u);
}

TEST_F(LogSettingsAsUser, ALevelBeyondIntIsWrittenNegative) {
    makeLibrary();
    ULogSettings::setLogLevel(4294967295u, 0);
    EXPECT_EQ(readSettings(), templateWith("-1"));
    EXPECT_EQ(ULogSettings::getLogLevel(), 4294967295u);
}

TEST_F(LogSettingsAsUser, TheReservedArgumentIsIgnored) {
    writeSettings("default_log_level=63\n");
    ULogSettings::setLogLevel(12, 99);
    EXPECT_EQ(readSettings(), "default_log_level=12\n");
}

TEST_F(LogSettingsAsUser, TheModesMaskDoesNotMatter) {
    makeLibrary();
    const mode_t mask = umask(0777);
    ULogSettings::setLogLevel(7, 0);
    umask(mask);
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
}

TEST_F(LogSettingsAsUser, SettingALevelNarrowsTheMode) {
    writeSettings("default_log_level=63\n");
    fs::permissions(settingsPath(), fs::perms{0666});
    ULogSettings::setLogLevel(31, 0);
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
}

TEST_F(LogSettingsAsUser, SettingAModulesLevelSetsTheDefault) {
    writeSettings("default_log_level=63\nnevo_log_level=63\n");
    ULogSettings::setModuleLogLevel("nevo", 17);
    EXPECT_EQ(readSettings(), "default_log_level=17\nnevo_log_level=63\n");
}

TEST_F(LogSettingsAsUser, SettingNoModulesLevelSetsTheDefaultToo) {
    writeSettings("default_log_level=63\n_log_level=63\n");
    ULogSettings::setModuleLogLevel(nullptr, 17);
    EXPECT_EQ(readSettings(), "default_log_level=17\n_log_level=63\n");
}

struct Rewrite {
    const char* rule;
    std::string before;
    unsigned int level;
    std::string after;
};
class Rewriting : public LogSettingsAsUser, public testing::WithParamInterface<Rewrite> {};

TEST_P(Rewriting, TheDefaultLine) {
    EXPECT_EQ(afterSetting(GetParam().before, GetParam().level), GetParam().after);
}

const std::string kPiece(255, 'x');

INSTANTIATE_TEST_SUITE_P(
    Rows, Rewriting,
    testing::Values(
        Rewrite{"SameLength", "default_log_level=63\nrest", 31, "default_log_level=31\nrest"},
        Rewrite{"ShorterLeavesTheSurplusBehind", "default_log_level=63\n", 5,
                "default_log_level=5\n\n"},
        Rewrite{"ShorterBeforeOtherText", "default_log_level=63 text\nrest", 5,
                "default_log_level=5\n text\nrest"},
        Rewrite{"LongerCoversTheNextLine", "default_log_level=5\nrest\n", 631,
                "default_log_level=631\nst\n"},
        Rewrite{"LongerCoversSeveralLines", "default_log_level=5\n\n\n\nrest\n", 4294967295u - 8,
                "default_log_level=-9\n\n\nrest\n"},
        Rewrite{"LongerAtTheEndGrowsTheFile", "default_log_level=", 63, "default_log_level=63\n"},
        Rewrite{"NoFinalLineEnd", "default_log_level=63", 5, "default_log_level=5\n"},
        Rewrite{"OnlyTheFirstLine", "default_log_level=11\ndefault_log_level=22\n", 33,
                "default_log_level=33\ndefault_log_level=22\n"},
        Rewrite{"LaterLine", "a\n\nbb\ndefault_log_level=11\nc\n", 22,
                "a\n\nbb\ndefault_log_level=22\nc\n"},
        Rewrite{"UnreadableValue", "default_log_level=abc\n", 22, "default_log_level=22\n\n"},
        Rewrite{"CarriageReturn", "default_log_level=11\r\nx", 22, "default_log_level=22\n\nx"},
        Rewrite{"NoDefaultLine", "a\n", 22, "a\n\ndefault_log_level=22\n"},
        Rewrite{"NoDefaultLineAndNoLineEnd", "a", 22, "a\ndefault_log_level=22\n"},
        Rewrite{"EmptyFile", "", 22, "\ndefault_log_level=22\n"},
        Rewrite{"CommentedLine", "#default_log_level=11\n", 22,
                "#default_log_level=11\n\ndefault_log_level=22\n"},
        Rewrite{"SecondPieceOfALongLine", kPiece + "default_log_level=11\n", 22,
                kPiece + "default_log_level=22\n"},
        Rewrite{"BesideTheSecondPiece", "x" + kPiece + "default_log_level=11\n", 22,
                "x" + kPiece + "default_log_level=11\n\ndefault_log_level=22\n"},
        Rewrite{"NulInAnEarlierLine", std::string("a\0b\ndefault_log_level=11\n", 25), 22,
                std::string("a\0b\ndefault_log_level=22\n", 25)},
        Rewrite{"NulInTheDefaultLine", std::string("default_log_level=11\0\0\nx", 24), 22,
                std::string("default_log_level=22\n\0\nx", 24)},
        Rewrite{"NulsAlone", std::string(600, '\0'), 22,
                std::string(600, '\0') + "\ndefault_log_level=22\n"}),
    nameOfRow);

TEST_F(LogSettingsAsUser, SettingTheSameLevelAgainChangesNothing) {
    for (const std::string before : {"default_log_level=63\nrest\n", "default_log_level=5", "x"}) {
        const std::string once = afterSetting(before, 31);
        EXPECT_EQ(afterSetting(once, 31), once);
    }
}

TEST_F(LogSettingsAsUser, AMissingParentFolderGivesDefaultsAndNoFile) {
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_FALSE(fs::exists(home() + "/Library"));
}

TEST_F(LogSettingsAsUser, AMissingHomeGivesDefaults) {
    setenv("HOME", "/does/not/exist", 1);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
}

TEST_F(LogSettingsAsUser, WithAnEmptyHomeTheFileLiesBelowTheRoot) {
    setenv("HOME", "", 1);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u);
    EXPECT_EQ(bytesOf("/Library/Zerva/zerva.conf"), templateWith("5"));
    fs::remove_all("/Library/Zerva");
}

TEST_F(LogSettingsAsUser, AnUnwritableHomeGivesDefaults) {
    makeLibrary();
    fs::permissions(home() + "/Library", fs::perms{0500});
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_FALSE(fs::exists(settingsFolder()));
    fs::permissions(home() + "/Library", fs::perms{0700});
}

TEST_F(LogSettingsAsUser, AFileThatMayNotBeOpenedIsLeftAloneButForItsMode) {
    writeSettings("default_log_level=5\n");
    fs::permissions(settingsPath(), fs::perms{0});
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
    EXPECT_EQ(readSettings(), "default_log_level=5\n");
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u);
}

TEST_F(LogSettingsAsUser, AFolderInTheFilesPlaceOnlyHasItsModeSet) {
    fs::create_directories(settingsPath());
    ULogSettings::setLogLevel(5, 0);
    EXPECT_TRUE(fs::is_directory(settingsPath()));
    EXPECT_EQ(modeOf(settingsPath()), 0600u);
}

TEST_F(LogSettingsAsUser, AFullDiskStillGivesDefaults) {
    makeLibrary();
    signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    const rlimit small{100, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &usual), 0);
    EXPECT_LE(readSettings().size(), 100u);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u);
}

TEST_F(LogSettingsAsUser, ANamedPipeInTheFilesPlaceHoldsUpNobody) {
    fs::create_directories(settingsFolder());
    ASSERT_EQ(mkfifo(settingsPath().c_str(), 0600), 0);
    ULogSettings::setLogLevel(5, 0);
    EXPECT_TRUE(fs::is_fifo(settingsPath()));
}

const std::array<std::string, 8> kLineKinds{"default_log_level=5\n",
                                            "default_log_level=631 x\n",
                                            "default_log_level=\n",
                                            "nevo_plugin_log_level=10\n",
                                            "nevo_plugin_log_level=a\n",
                                            "log_file_size=1000\n",
                                            "# text",
                                            std::string("\0\n", 2)};

// All files of up to three lines of the kinds above.
std::vector<std::string> allSmallFiles() {
    std::vector<std::string> files{""};
    for (std::size_t first = 0, lines = 0; lines < 3; ++lines) {
        const std::size_t end = files.size();
        for (; first < end; ++first) {
            for (const std::string& line : kLineKinds) files.push_back(files[first] + line);
        }
    }
    return files;
}

TEST_F(LogSettingsAsUser, EverySmallFileIsReadAndWrittenLikeTheModel) {
    for (const std::string& bytes : allSmallFiles()) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        SettingsModel model{bytes};
        writeSettings(bytes);
        ASSERT_EQ(ULogSettings::getLogLevel(), model.level());
        ASSERT_EQ(ULogSettings::getModuleLogLevel("nevo_plugin"), model.moduleLevel("nevo_plugin"));
        ASSERT_EQ(ULogSettings::getFileRotationSize(), model.rotationSize());
        ASSERT_EQ(readSettings(), bytes);
        for (const int level : {42, 7}) {
            ULogSettings::setLogLevel(static_cast<unsigned int>(level), 0);
            model.setLevel(level);
            ASSERT_EQ(readSettings(), model.bytes);
        }
    }
}

// A file that several write and read at once.
class SharedSettings : public LogSettingsAsUser {
  protected:
    static constexpr int kSteps = kThreadSteps / 2;

    SharedSettings() { writeSettings(file(kLevels[0])); }

    // Of one length, for the line is written over in place; and different in one character, so that
    // a reader sees one or the other.
    static constexpr std::array<unsigned int, 2> kLevels{31, 33};

    static std::string file(unsigned int level) {
        return "# the user's own words\nlog_file_size=1000\ndefault_log_level=" +
               std::to_string(level) + "\nnevo_log_level=7\n# and more of them";
    }

    static void setLevels() {
        for (int i = 0; i < kSteps; ++i) {
            ULogSettings::setLogLevel(kLevels[static_cast<std::size_t>(i) % 2], 0);
        }
    }

    bool isOneWholeFile() const {
        const std::string bytes = readSettings();
        return bytes == file(kLevels[0]) || bytes == file(kLevels[1]);
    }

    // Looks at the file until `isOver`. @return how often something else was there.
    int disturbances(const std::function<bool()>& isOver) const {
        int count = 0;
        while (!isOver()) {
            const unsigned int level = ULogSettings::getLogLevel();
            if (level != kLevels[0] && level != kLevels[1]) ++count;
            if (ULogSettings::getModuleLogLevel("nevo") != 7) ++count;
            if (ULogSettings::getFileRotationSize() != 1000) ++count;
            if (!isOneWholeFile()) ++count;
        }
        return count;
    }

    void expectNothingElseIsLeft() const {
        EXPECT_TRUE(isOneWholeFile());
        for (const fs::directory_entry& entry : fs::directory_iterator(settingsFolder())) {
            EXPECT_EQ(entry.path(), settingsPath());
        }
    }
};

TEST_F(SharedSettings, TwoThreadsWriteAndThreeReadWithoutDisturbance) {
    std::atomic<int> writing{2};
    onThreads(5, [&](int thread) {
        if (thread < 2) {
            setLevels();
            --writing;
        } else {
            EXPECT_EQ(disturbances([&] { return writing == 0; }), 0);
        }
    });
    expectNothingElseIsLeft();
}

TEST_F(SharedSettings, TwoProcessesWriteAndAnotherReadsWithoutDisturbance) {
    int writing = 0;
    for (; writing < 2; ++writing) {
        const pid_t writer = fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            setLevels();
            _exit(0);
        }
    }
    const auto isOver = [&writing] {
        int status = 0;
        if (waitpid(-1, &status, WNOHANG) > 0) {
            --writing;
            EXPECT_EQ(status, 0);
        }
        return writing == 0;
    };
    EXPECT_EQ(disturbances(isOver), 0);
    expectNothingElseIsLeft();
}

}  // namespace
