#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "log_file.h"
#include "plugin_test.h"

/// The plug-in with the log object that it was loaded with, in an empty home folder: what a user
/// finds in the file. Nothing has been called yet.
class RealLog : public UninitializedPluginTest {
  protected:
    RealLog();
    ~RealLog() override;

    static std::string home();
    static std::string logPath() { return home() + "/Library/Logs/Zerva/nevo_plugin.log"; }
    static std::string settingsPath() { return home() + "/Library/Zerva/zerva.conf"; }

    /// The lines of a log file behind its header, each of them this process's and the plug-in's. A
    /// line that does not begin like one belongs to the text of the line before it.
    static std::vector<LogLine> linesOf(const std::string& path);

    /// The items of the file, as `shown` shows them.
    static std::vector<std::string> itemsOf(const std::string& path);

    /// Those that have come since the last call.
    std::vector<std::string> newItems();

    /// An item without the priority column of an ordinary one, and with "?" for the numbers that
    /// differ from run to run: addresses and the ids of the programs that are started.
    static std::string shown(std::string item);

  private:
    static void clean();

    std::size_t m_seen = 0;
};

/// The items that begin a run, as `RealLog::shown` shows them.
std::vector<std::string> startUp(int level = 63);

/// What opening the log adds to a run, and what every page adds again.
std::vector<std::string> banner();

/// Several lists of items as one.
std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists);
