#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "log_file.h"
#include "plugin_test.h"
#include "service_files.h"

/// The plug-in with the log object that it was loaded with, in an empty home folder: what a user
/// finds in the file. Nothing has been called yet.
class RealLog : public UninitializedPluginTest {
  protected:
    RealLog() {
        clean();
        std::filesystem::create_directories(home() + "/Library/Logs");
        useOwnLog();
    }
    ~RealLog() override {
        module->shutdown();
        clean();
    }

    static std::string home() { return std::getenv("HOME"); }
    static std::string logPath() { return home() + "/Library/Logs/Zerva/nevo_plugin.log"; }
    static std::string settingsPath() { return home() + "/Library/Zerva/zerva.conf"; }

    /// The lines of a log file behind its header, each of them this process's and the plug-in's. A
    /// line that does not begin like one belongs to the text of the line before it.
    static std::vector<LogLine> linesOf(const std::string& path);

    /// The items of the file, as `shown` shows them.
    static std::vector<std::string> itemsOf(const std::string& path);

    /// Those that have come since the last call.
    std::vector<std::string> newItems() {
        const std::vector<std::string> all = itemsOf(logPath());
        const std::size_t seen = std::min(std::exchange(m_seen, all.size()), all.size());
        return {all.begin() + static_cast<std::ptrdiff_t>(seen), all.end()};
    }

    /// An item without the priority column of an ordinary one, and with "?" for the numbers that
    /// differ from run to run: addresses and the ids of the programs that are started.
    static std::string shown(std::string item);

  private:
    static void clean() {
        std::filesystem::remove_all(home() + "/Library");
        removeServiceFiles();
    }

    std::size_t m_seen = 0;
};

inline std::vector<LogLine> RealLog::linesOf(const std::string& path) {
    std::string text = bytesOf(path);
    EXPECT_TRUE(text.empty() || text.back() == '\n') << "the file ends in mid-line";
    if (text.rfind(fileRule(), 0) == 0) {
        text.erase(0, text.find("\n" + fileRule() + "\n", 1) + fileRule().size() + 2);
    }
    std::vector<LogLine> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        if (const std::optional<LogLine> parsed = parseLogLine(line)) {
            EXPECT_EQ(parsed->processId, getpid()) << line;
            EXPECT_EQ(parsed->module, "nevo_plugin") << line;
            lines.push_back(*parsed);
        } else if (lines.empty()) {
            ADD_FAILURE() << "not a line: " << line;
        } else {
            lines.back().item += "\n" + line;
        }
        at = end + 1;
    }
    return lines;
}

inline std::vector<std::string> RealLog::itemsOf(const std::string& path) {
    std::vector<std::string> items;
    for (const LogLine& line : linesOf(path)) items.push_back(shown(line.item));
    return items;
}

inline std::string RealLog::shown(std::string item) {
    const std::string column = "0,,,, ";
    if (item.rfind(column, 0) == 0) item.erase(0, column.size());
    for (const std::string before : {"stream=0x", "aPlugin=", "process exited pid='"}) {
        const std::size_t found = item.find(before);
        if (found == std::string::npos) continue;
        const std::size_t at = found + before.size();
        const std::size_t end = item.find_first_not_of("-0123456789abcdef", at);
        item.replace(at, end - at, "?");
    }
    return item;
}

/// The items that begin a run, as `RealLog::shown` shows them.
inline std::vector<std::string> startUp(int level = 63) {
    std::vector<std::string> items = startUpItems(level);
    for (std::string& item : items) {
        if (item.rfind("0,,,, ", 0) == 0) item.erase(0, 6);
    }
    return items;
}

/// What opening the log adds to a run, and what every page adds again.
inline std::vector<std::string> banner() {
    const std::string rule = "[PluginOpenLog] " + std::string(61, '-');
    return {rule, "[PluginOpenLog] Plugin name:'Zerva Lanway plugin'",
            "[PluginOpenLog] Plugin version:'ZERVA_VERSION'",
            "[PluginOpenLog] Plugin mime:'application/x-zerva-sslvpn:xvpn:Zerva Lanway plugin'",
            rule};
}

/// Several lists of items as one.
inline std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists) {
    std::vector<std::string> all;
    for (const auto& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}
