#pragma once

/// A home folder with a file log in it, and what stands in its files.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "UFileErrorLog.h"
#include "log_file.h"
#include "temporary_home.h"

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

    /// Writes `count` items that name themselves.
    void write(int count);

    UFileErrorLog log;
};
