#include "real_log.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "row_name.h"
#include "sandbox_main.h"
#include "service_files.h"

// The log file under every setting, and when there can be none.

namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

class LogFileLevel : public RealLog {
  protected:
    // A page that has started the service, and the service's first answer.
    void converse(const std::string& text) {
        installService("exit=0");
        ASSERT_EQ(page.create({{"last_param", ""}}), 0);
        page.deliver(browser.lastRequest(), text);
        newItems();
        page.deliver(browser.lastRequest(), "command");
    }

    Embedding page{plugin};
};

// The words of a service's answer.

struct Words {
    const char* rule;
    const char* before;  // the settings file
    const char* answer;
    std::vector<std::string> changes;
    const char* after;
    int levelOfTheNextRun;
};

class LogFileWords : public LogFileLevel, public testing::WithParamInterface<Words> {};

TEST_P(LogFileWords, ChangeTheOpenLogAndTheDefaultLine) {
    writeFile(settingsPath(), GetParam().before);
    start();
    converse(GetParam().answer);
    std::vector<std::string> items = newItems();
    EXPECT_EQ(items.back(),
              "[sendToNevo] call GetURLNotify, buf='http://127.0.0.1:44444/vpn.php?command&z=0'")
        << "the plug-in's own lines are written at any level";
    std::erase_if(items, [](const std::string& item) { return item.rfind("log level", 0) != 0; });
    EXPECT_EQ(items, GetParam().changes);
    if (sandboxUserIsRoot()) {
        EXPECT_EQ(readFile(settingsPath()), GetParam().before) << "the file is the user's";
        return;
    }
    EXPECT_EQ(readFile(settingsPath()), GetParam().after);
    page.destroy();
    newItems();
    Embedding next(plugin);
    ASSERT_EQ(next.create(), 0);
    items = newItems();
    const std::vector<std::string> run = startUp(GetParam().levelOfTheNextRun);
    items.resize(run.size());
    EXPECT_THAT(items, ElementsAreArray(run));
}

constexpr char kChangedTo31[] = "log level has been changed to 31";
constexpr char kChangedTo63[] = "log level has been changed to 63";

INSTANTIATE_TEST_SUITE_P(Answers, LogFileWords,
                         testing::Values(Words{"Disable",
                                               "default_log_level=63\n",
                                               "LOGGING_DISABLE",
                                               {kChangedTo31},
                                               "default_log_level=31\n",
                                               31},
                                         Words{"Enable",
                                               "default_log_level=31\n",
                                               "LOGGING_ENABLE",
                                               {kChangedTo63},
                                               "default_log_level=63\n",
                                               63},
                                         Words{"EnableWhatIsEnabled",
                                               "default_log_level=63\n",
                                               "LOGGING_ENABLE",
                                               {},
                                               "default_log_level=63\n",
                                               63},
                                         Words{"Both",
                                               "default_log_level=63\n",
                                               "LOGGING_ENABLE LOGGING_DISABLE",
                                               {kChangedTo31, kChangedTo63},
                                               "default_log_level=63\n",
                                               63},
                                         Words{"TheModulesOwnLineStays",
                                               "default_log_level=63\nnevo_plugin_log_level=50\n",
                                               "LOGGING_DISABLE",
                                               {kChangedTo31},
                                               "default_log_level=31\nnevo_plugin_log_level=50\n",
                                               50},
                                         Words{"AFileWithoutADefaultLine",
                                               "log_file_size=5000000\n",
                                               "LOGGING_DISABLE",
                                               {kChangedTo31},
                                               "log_file_size=5000000\n\ndefault_log_level=31\n",
                                               31}),
                         nameOfRow);

TEST_F(LogFileLevel, WordsChangeTheFileThatTheFirstOpeningMade) {
    start();
    EXPECT_EQ(fs::exists(settingsPath()), !sandboxUserIsRoot());
    converse("LOGGING_DISABLE");
    EXPECT_THAT(newItems(), Contains(kChangedTo31));
    if (sandboxUserIsRoot()) return;
    const std::string settings = readFile(settingsPath());
    EXPECT_NE(settings.find("\ndefault_log_level=31\n\n"), std::string::npos);
    EXPECT_NE(settings.find("\n#nevo_plugin_log_level=63\n"), std::string::npos);
}

// The settings at a page's creation.

struct Level {
    const char* rule;
    const char* settings;
    int level;
};

class SettingsLevel : public LogFileLevel, public testing::WithParamInterface<Level> {};

TEST_P(SettingsLevel, IsThatOfTheRun) {
    writeFile(settingsPath(), GetParam().settings);
    start();
    std::vector<std::string> items = newItems();
    const std::vector<std::string> begin = joined({startUp(GetParam().level), banner()});
    items.resize(begin.size());
    EXPECT_THAT(items, ElementsAreArray(begin));
    EXPECT_EQ(module->errorLog()->GetLogLevel(), GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(
    Levels, SettingsLevel,
    testing::Values(Level{"Default", "default_log_level=31\n", 31},
                    Level{"Module", "default_log_level=31\nnevo_plugin_log_level=48\n", 48},
                    Level{"OtherModule", "nevo_log_level=31\n", 63},
                    Level{"CommentedOut", "#nevo_plugin_log_level=31\n", 63},
                    Level{"ZeroIsOne", "nevo_plugin_log_level=0\n", 1},
                    Level{"Huge", "nevo_plugin_log_level=99999999999\n", 2147483647}),
    nameOfRow);

TEST_F(LogFileLevel, BelowOneSilencesThePlugin) {
    writeFile(settingsPath(), "nevo_plugin_log_level=-5\n");
    start();
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    page.deliver(browser.lastRequest(), "state");
    EXPECT_EQ(browser.requests.size(), 2U);
    EXPECT_THAT(newItems(), ElementsAre(startUp()[2], startUp()[3]));
}

TEST_F(LogFileLevel, IsReadAgainForEachPage) {
    writeFile(settingsPath(), "default_log_level=63\n");
    start();
    newItems();
    writeFile(settingsPath(), "default_log_level=40\n");
    ASSERT_EQ(page.create(), 0);
    EXPECT_EQ(newItems().front(), "log level has been changed to 40") << "the log was open";
}

// Rotation.

TEST_F(LogFileLevel, RotationInAConversationTearsNoLine) {
    writeFile(settingsPath(), "default_log_level=31\nlog_file_size=1000\n");
    start();
    installService("exit=0");
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    const std::string old = logPath() + ".bak";
    BrowserRequest request = browser.lastRequest();
    for (int i = 0; i < 200; ++i) {
        page.deliver(request, "answer");
        page.deliver(browser.lastRequest(), "command");
        request = browser.lastRequest();
    }
    EXPECT_EQ(itemsOf(old).size(), 50U);
    std::vector<std::string> items = itemsOf(logPath());
    ASSERT_GE(items.size(), startUp(31).size());
    EXPECT_LT(items.size(), 50U);
    items.resize(startUp(31).size());
    EXPECT_THAT(items, ElementsAreArray(startUp(31)));
    for (const std::string& path : {logPath(), old}) {
        EXPECT_EQ(bytesOf(path).rfind(fileRule() + "\nKernel version: ", 0), 0U) << path;
        struct stat status {};
        ASSERT_EQ(stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, sandboxUserIsRoot() ? 0644U : 0600U) << path;
    }
}

// Where the file is, and when there is none.

TEST_F(LogFileLevel, FileIsInTheDatabasesHomeFolderWithoutHome) {
    const std::string before = home();
    unsetenv("HOME");
    start();
    setenv("HOME", before.c_str(), 1);
    EXPECT_THAT(itemsOf(logPath()), Contains("[NP_GetEntryPoints]"));
}

TEST_F(LogFileLevel, FileIsBelowTheRootWithAnEmptyHome) {
    const std::string before = home();
    fs::create_directories("/Library/Logs");
    setenv("HOME", "", 1);
    start();
    setenv("HOME", before.c_str(), 1);
    EXPECT_THAT(itemsOf("/Library/Logs/Zerva/nevo_plugin.log"), Contains("[NP_GetEntryPoints]"));
    EXPECT_FALSE(fs::exists(logPath()));
    fs::remove_all("/Library/Logs");
    fs::remove_all("/Library/Zerva");
}

struct Obstacle {
    const char* rule;
    std::function<void(const std::string& logs)> put;
    bool stopsRoot;
};

class LogObstacle : public LogFileLevel, public testing::WithParamInterface<Obstacle> {};

TEST_P(LogObstacle, LeavesThePageItsConnection) {
    const std::string logs = home() + "/Library/Logs";
    GetParam().put(logs);
    start();
    installService("exit=0");
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    page.deliver(browser.lastRequest(), "LOGGING_DISABLE");
    page.deliver(browser.lastRequest(), "command");
    EXPECT_EQ(browser.lastRequest().url, "http://127.0.0.1:44444/vpn.php?command&z=0");
    EXPECT_EQ(page.destroy(), 0);
    fs::permissions(logs, fs::perms{0700});
    const bool isStopped = GetParam().stopsRoot || !sandboxUserIsRoot();
    EXPECT_EQ(fs::is_regular_file(logPath()), !isStopped);
}

TEST_P(LogObstacle, IsForgottenWhenItIsGone) {
    const std::string logs = home() + "/Library/Logs";
    GetParam().put(logs);
    start();
    fs::permissions(logs, fs::perms{0700});
    fs::remove_all(logs);
    fs::create_directory(logs);
    module->shutdown();
    ASSERT_EQ(page.create(), 0);
    EXPECT_THAT(newItems(), Contains("[NS_NewPluginInstance] nothing to do"));
}

INSTANTIATE_TEST_SUITE_P(
    Obstacles, LogObstacle,
    testing::Values(
        Obstacle{"FileForTheLogsFolder",
                 [](const std::string& logs) {
                     fs::remove(logs);
                     writeFile(logs, "");
                 },
                 true},
        Obstacle{"FolderForTheLog",
                 [](const std::string& logs) {
                     fs::create_directories(logs + "/Zerva/nevo_plugin.log");
                 },
                 true},
        Obstacle{"PipeForTheLog",
                 [](const std::string& logs) {
                     fs::create_directory(logs + "/Zerva");
                     mkfifo((logs + "/Zerva/nevo_plugin.log").c_str(), 0600);
                 },
                 true},
        Obstacle{
            "LinkToNowhere",
            [](const std::string& logs) { fs::create_symlink("/does/not/exist", logs + "/Zerva"); },
            true},
        Obstacle{"LogsFolderThatMayNotBeWritten",
                 [](const std::string& logs) { fs::permissions(logs, fs::perms{0500}); }, false}),
    nameOfRow);

}  // namespace
