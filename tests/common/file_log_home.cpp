#include "file_log_home.h"

FileLogTest::FileLogTest() {
    makeLibrary();
    std::filesystem::create_directory(home() + "/Library/Logs");
    log.setParam("module_name", "nevo");
}

void FileLogTest::open() { ASSERT_EQ(log.Open(path().c_str(), "a"), 0); }

std::vector<LogLine> FileLogTest::linesOf(const std::string& path) {
    std::string text = bytesOf(path);
    const std::string header = fileHeader();
    if (text.compare(0, header.size(), header) == 0) text.erase(0, header.size());
    std::vector<LogLine> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        EXPECT_NE(end, std::string::npos) << "the file ends in mid-line";
        if (end == std::string::npos) break;
        const std::string line = text.substr(at, end - at);
        const std::optional<LogLine> parsed = parseLogLine(line);
        EXPECT_TRUE(parsed.has_value()) << line;
        if (parsed) lines.push_back(*parsed);
        at = end + 1;
    }
    return lines;
}

std::vector<std::string> FileLogTest::itemsOf(const std::string& path) {
    std::vector<std::string> items;
    for (const LogLine& line : linesOf(path)) items.push_back(line.item);
    return items;
}

void FileLogTest::write(int count) {
    for (int i = 0; i < count; ++i) {
        const std::string text = "0,,,, item " + std::to_string(i) + "\n";
        EXPECT_EQ(log.WriteLogItem(text.c_str()), static_cast<int>(text.size()));
    }
}
