#pragma once

/// The form of a log file: what tests expect of its bytes, whoever wrote them.

#include <optional>
#include <string>
#include <vector>

/// The 74 signs around a file's header.
inline std::string fileRule() { return std::string(74, '='); }

/// What begins a file on this machine.
std::string fileHeader();

/// The items that begin a run of this program at this level.
std::vector<std::string> startUpItems(int level);

/// One line of a log file, taken apart by its exact form.
struct LogLine {
    std::string hour;  ///< two characters, padded with a blank
    long processId;
    long threadId;
    std::string module;
    std::string item;  ///< what was handed to WriteLogItem, without its line end
};

/// @return the parts of `line`, or nothing if it has another form.
std::optional<LogLine> parseLogLine(const std::string& line);

/// @return all bytes of the file; "" when there is none.
std::string bytesOf(const std::string& path);
