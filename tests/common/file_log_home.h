#pragma once

/// A home folder with a file log in it, and what stands in its files.

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "UFileErrorLog.h"
#include "temporary_home.h"

/// The 74 signs around a file's header.
inline std::string fileRule() { return std::string(74, '='); }

/// What begins a file on this machine.
std::string fileHeader();

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

class FileLogTest : public TemporaryHome {
  protected:
    FileLogTest();

    std::string path() const { return home() + "/nevo.log"; }
    std::string oldPath() const { return path() + ".bak"; }

    /// Opens the log in append mode; 0 is expected.
    void open();

    /// The file behind its header, line by line. Fails when a line has another form.
    std::vector<LogLine> lines() const { return linesOf(path()); }
    static std::vector<LogLine> linesOf(const std::string& path);

    /// The items of the file behind those that begin a run.
    std::vector<std::string> items() const { return itemsOf(path()); }
    static std::vector<std::string> itemsOf(const std::string& path);

    /// The items that begin a run at this level.
    static std::vector<std::string> startUpItems(int level);

    /// Writes `count` items that name themselves.
    void write(int count);

    UFileErrorLog log;
};
