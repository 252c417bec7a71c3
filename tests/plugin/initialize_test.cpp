#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "browser_table.h"
#include "plugin_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kRule[] =
    "[PluginOpenLog] -------------------------------------------------------------\n";

// What opening the log leaves in it.
std::vector<std::string> openingEvents(const std::string& home) {
    return {"<setParam(module_name, nevo_plugin)>",
            "<Open(" + home + "/Library/Logs/Zerva/nevo_plugin.log, a)>",
            "<SetLogLevel(63)>",
            kRule,
            "[PluginOpenLog] Plugin name:'Zerva Lanway plugin'\n",
            "[PluginOpenLog] Plugin version:'ZERVA_VERSION'\n",
            "[PluginOpenLog] Plugin mime:'application/x-zerva-sslvpn:xvpn:Zerva Lanway plugin'\n",
            kRule};
}

std::vector<std::string> openingEventsAnd(std::vector<std::string> lines) {
    std::vector<std::string> events = openingEvents(std::getenv("HOME"));
    events.insert(events.end(), lines.begin(), lines.end());
    return events;
}

class Initialize : public UninitializedPluginTest {
  protected:
    const NPNetscapeFuncs& kept() const {
        return *static_cast<NPNetscapeFuncs*>(module->variable("NPNFuncs"));
    }

    bool nothingIsKept() const {
        static const NPNetscapeFuncs kNothing{};
        return std::memcmp(&kept(), &kNothing, sizeof kNothing) == 0;
    }
};

TEST_F(Initialize, KeepsNothingBeforeItIsCalled) { EXPECT_TRUE(nothingIsKept()); }

TEST_F(Initialize, OpensTheLogAndWritesTheBannerFirst) {
    EXPECT_EQ(module->initialize(&browser.table), 0);
    EXPECT_THAT(log.events(), ElementsAreArray(openingEventsAnd(
                                  {"[NP_Initialize] Plugin initialization...\n",
                                   "[NP_Initialize] NPNetscapeFuncs version of browser 26\n"})));
    EXPECT_TRUE(browser.calls.empty());
}

TEST_F(Initialize, RefusesANullTable) {
    EXPECT_EQ(module->initialize(nullptr), 3);
    EXPECT_THAT(log.events(),
                ElementsAreArray(openingEventsAnd(
                    {"[NP_Initialize] Plugin initialization...\n",
                     "[NP_Initialize] ERROR! Wrong argument NPNetscapeFuncs cannot be NULL\n"})));
    EXPECT_TRUE(nothingIsKept());
}

struct TableSize {
    uint16 size;
    NPError result;
    const char* lastLine;
};

class InitializeWithTableOf : public Initialize, public testing::WithParamInterface<TableSize> {};

TEST_P(InitializeWithTableOf, TakesOnlyTablesOfAtLeast328Bytes) {
    browser.table.size = GetParam().size;
    EXPECT_EQ(module->initialize(&browser.table), GetParam().result);
    EXPECT_EQ(log.lines().back(), GetParam().lastLine);
    EXPECT_EQ(nothingIsKept(), GetParam().result != 0);
}

constexpr char kAccepted[] = "[NP_Initialize] NPNetscapeFuncs version of browser 26\n";

INSTANTIATE_TEST_SUITE_P(
    Sizes, InitializeWithTableOf,
    testing::Values(
        TableSize{0, 3,
                  "[NP_Initialize] ERROR! size of browserFuncs (0) < size of NetscapeFuncs "
                  "(328)\n"},
        TableSize{327, 3,
                  "[NP_Initialize] ERROR! size of browserFuncs (327) < size of NetscapeFuncs "
                  "(328)\n"},
        TableSize{328, 0, kAccepted}, TableSize{329, 0, kAccepted}, TableSize{448, 0, kAccepted},
        TableSize{65535, 0, kAccepted}),
    [](const auto& row) { return "Size" + std::to_string(row.param.size); });

struct Version {
    uint16 version;
    bool hasNotification;
    const char* line;
};

class InitializeWithVersion : public Initialize, public testing::WithParamInterface<Version> {};

TEST_P(InitializeWithVersion, LogsTheWholeVersionNumber) {
    browser.table.version = GetParam().version;
    EXPECT_EQ(module->initialize(&browser.table), 0);
    EXPECT_EQ(log.lines().back(), GetParam().line);
}

TEST_P(InitializeWithVersion, CopiesExactlyTheEntriesThatItUses) {
    const std::set<std::string> always = {
        "geturl",           "posturl",       "requestread",
        "newstream",        "write",         "destroystream",
        "status",           "uagent",        "memalloc",
        "memfree",          "memflush",      "reloadplugins",
        "getvalue",         "setvalue",      "invalidaterect",
        "invalidateregion", "forceredraw",   "createobject",
        "retainobject",     "releaseobject", "utf8fromidentifier"};
    const std::set<std::string> fromMinor9 = {"getJavaEnv", "getJavaPeer", "geturlnotify",
                                              "posturlnotify"};
    fillWithSentinels(browser.table);
    browser.table.size = 400;
    browser.table.version = GetParam().version;
    ASSERT_EQ(module->initialize(&browser.table), 0);

    EXPECT_EQ(kept().size, 400);
    EXPECT_EQ(kept().version, GetParam().version);
    for (std::size_t i = 0; i < std::size(kBrowserEntryNames); ++i) {
        const std::string name = kBrowserEntryNames[i];
        const bool copied =
            always.count(name) == 1 || (GetParam().hasNotification && fromMinor9.count(name) == 1);
        EXPECT_EQ(browserEntryAt(kept(), i), copied ? browserEntryAt(browser.table, i) : nullptr)
            << name;
    }
    EXPECT_TRUE(browser.calls.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Versions, InitializeWithVersion,
    testing::Values(
        Version{0, false, "[NP_Initialize] NPNetscapeFuncs version of browser 0\n"},
        Version{8, false, "[NP_Initialize] NPNetscapeFuncs version of browser 8\n"},
        Version{9, true, "[NP_Initialize] NPNetscapeFuncs version of browser 9\n"},
        Version{26, true, "[NP_Initialize] NPNetscapeFuncs version of browser 26\n"},
        Version{0x0108, false, "[NP_Initialize] NPNetscapeFuncs version of browser 264\n"},
        Version{0x0109, true, "[NP_Initialize] NPNetscapeFuncs version of browser 265\n"},
        Version{0xFF00, false, "[NP_Initialize] NPNetscapeFuncs version of browser 65280\n"},
        Version{0xFFFF, true, "[NP_Initialize] NPNetscapeFuncs version of browser 65535\n"}),
    [](const auto& row) { return "Version" + std::to_string(row.param.version); });

TEST_F(Initialize, TakesTheLogFolderFromTheUserDatabaseWithoutHome) {
    const std::string home = std::getenv("HOME");
    unsetenv("HOME");
    EXPECT_EQ(module->initialize(&browser.table), 0);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(log.events().at(1), "<Open(" + home + "/Library/Logs/Zerva/nevo_plugin.log, a)>");
}

TEST_F(Initialize, TakesTheLogFolderFromHomeWhateverItSays) {
    const std::string home = std::getenv("HOME");
    setenv("HOME", "/nowhere", 1);
    EXPECT_EQ(module->initialize(&browser.table), 0);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(log.events().at(1), "<Open(/nowhere/Library/Logs/Zerva/nevo_plugin.log, a)>");
}

TEST_F(Initialize, TakesTheLogFolderFromHomeEvenIfItIsEmpty) {
    const std::string home = std::getenv("HOME");
    setenv("HOME", "", 1);
    EXPECT_EQ(module->initialize(&browser.table), 0);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(log.events().at(1), "<Open(/Library/Logs/Zerva/nevo_plugin.log, a)>");
}

TEST_F(Initialize, TakesTheLevelThatTheSettingsGiveToThePlugin) {
    const std::filesystem::path folder = std::string(std::getenv("HOME")) + "/Library/Zerva";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "zerva.conf") << "default_log_level=5\nnevo_plugin_log_level=10\n";
    EXPECT_EQ(module->initialize(&browser.table), 0);
    std::filesystem::remove(folder / "zerva.conf");
    EXPECT_EQ(log.events().at(2), "<SetLogLevel(10)>");
}

TEST_F(Initialize, ATableOfAnOlderBrowserLeavesTheNewerEntriesAsTheyAre) {
    ASSERT_EQ(module->initialize(&browser.table), 0);
    const auto geturlnotify = browser.table.geturlnotify;
    fillWithSentinels(browser.table);
    browser.table.version = 8;
    ASSERT_EQ(module->initialize(&browser.table), 0);
    EXPECT_EQ(kept().geturlnotify, geturlnotify);
    EXPECT_EQ(kept().geturl, browser.table.geturl);
    EXPECT_EQ(kept().version, 8);
}

TEST_F(Initialize, WritesNothingWithoutALogObject) {
    removeLog();
    EXPECT_EQ(module->initialize(nullptr), 3);
    EXPECT_EQ(module->initialize(&browser.table), 0);
    module->shutdown();
    EXPECT_TRUE(log.events().empty());
}

TEST_F(Initialize, TakesAThousandRoundsOfStartAndShutdown) {
    for (int round = 0; round < 1000; ++round) {
        log.clear();
        ASSERT_EQ(module->initialize(&browser.table), 0);
        ASSERT_EQ(log.events().size(), 10U);
        module->shutdown();
        ASSERT_EQ(log.events().back(), "<Close()>");
    }
}

TEST_F(Initialize, ShutdownLogsAndClosesTheLog) {
    module->shutdown();
    EXPECT_THAT(log.events(), ElementsAre("[NP_Shutdown]\n", "<Close()>"));
}

TEST_F(Initialize, EntryPointsMayBeAskedForFirst) {
    EXPECT_EQ(module->getEntryPoints(&plugin), 0);
    EXPECT_EQ(module->initialize(&browser.table), 0);
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
}

TEST_F(Initialize, IsOneOfExactlyThreeExportedFunctions) {
    EXPECT_THAT(module->exported(),
                ElementsAre("NP_GetEntryPoints", "NP_Initialize", "NP_Shutdown"));
}

}  // namespace
