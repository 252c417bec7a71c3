#include "real_log.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>

#include "service_files.h"

namespace {

// An item without the priority column of an ordinary one.
std::string withoutColumn(std::string item) {
    const std::string column = "0,,,, ";
    if (item.rfind(column, 0) == 0) item.erase(0, column.size());
    return item;
}

}  // namespace

RealLog::RealLog() {
    clean();
    std::filesystem::create_directories(home() + "/Library/Logs");
    useOwnLog();
}

RealLog::~RealLog() {
    module->shutdown();
    clean();
}

std::string RealLog::home() { return std::getenv("HOME"); }

void RealLog::clean() {
    std::filesystem::remove_all(home() + "/Library");
    removeServiceFiles();
}

std::vector<std::string> RealLog::newItems() {
    const std::vector<std::string> all = itemsOf(logPath());
    const std::size_t seen = std::min(std::exchange(m_seen, all.size()), all.size());
    return {all.begin() + static_cast<std::ptrdiff_t>(seen), all.end()};
}

std::vector<LogLine> RealLog::linesOf(const std::string& path) {
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

std::vector<std::string> RealLog::itemsOf(const std::string& path) {
    std::vector<std::string> items;
    for (const LogLine& line : linesOf(path)) items.push_back(shown(line.item));
    return items;
}

std::string RealLog::shown(std::string item) {
    item = withoutColumn(std::move(item));
    for (const std::string before : {"stream=0x", "aPlugin=", "process exited pid='"}) {
        const std::size_t found = item.find(before);
        if (found == std::string::npos) continue;
        const std::size_t at = found + before.size();
        const std::size_t end = item.find_first_not_of("-0123456789abcdef", at);
        item.replace(at, end - at, "?");
    }
    return item;
}

std::vector<std::string> startUp(int level) {
    std::vector<std::string> items = startUpItems(level);
    for (std::string& item : items) item = withoutColumn(std::move(item));
    return items;
}

std::vector<std::string> banner() {
    const std::string rule = "[PluginOpenLog] " + std::string(61, '-');
    return {rule, "[PluginOpenLog] Plugin name:'Zerva Lanway plugin'",
            "[PluginOpenLog] Plugin version:'ZERVA_VERSION'",
            "[PluginOpenLog] Plugin mime:'application/x-zerva-sslvpn:xvpn:Zerva Lanway plugin'",
            rule};
}

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> lists) {
    std::vector<std::string> all;
    for (const auto& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}
