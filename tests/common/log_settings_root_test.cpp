// The settings belong to the user: a process that runs as root reads them and never writes.

#include "ULogSettings.h"
#include "log_file.h"
#include "temporary_home.h"

namespace {

class LogSettingsAsRoot : public TemporaryHome {};

TEST_F(LogSettingsAsRoot, AskingForALevelMakesNoFile) {
    makeLibrary();
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_FALSE(std::filesystem::exists(settingsFolder()));
}

TEST_F(LogSettingsAsRoot, SettingALevelMakesNoFile) {
    makeLibrary();
    ULogSettings::setLogLevel(5, 0);
    ULogSettings::setModuleLogLevel("nevo", 5);
    EXPECT_FALSE(std::filesystem::exists(settingsFolder()));
}

TEST_F(LogSettingsAsRoot, WithAnEmptyHomeTheFileLiesBelowTheRootAndIsOnlyRead) {
    const std::string folder = "/Library/Zerva";
    std::filesystem::create_directory(folder);
    std::ofstream(folder + "/zerva.conf") << "default_log_level=5\nnevo_log_level=6\n";
    setenv("HOME", "", 1);
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 6u);
    ULogSettings::setModuleLogLevel(nullptr, 7);
    EXPECT_EQ(bytesOf(folder + "/zerva.conf"), "default_log_level=5\nnevo_log_level=6\n");
    std::filesystem::remove_all(folder);
}

TEST_F(LogSettingsAsRoot, SettingALevelTouchesNothing) {
    writeSettings("default_log_level=63\n");
    std::filesystem::permissions(settingsPath(), std::filesystem::perms{0640});
    ULogSettings::setLogLevel(5, 0);
    ULogSettings::setModuleLogLevel("nevo", 5);
    EXPECT_EQ(readSettings(), "default_log_level=63\n");
    EXPECT_EQ(modeOf(settingsPath()), 0640u);
}

}  // namespace
