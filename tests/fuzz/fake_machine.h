#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The machine as far as the plug-in reaches for it: the pid file, processes and signals, the
/// service's port. The plug-in that fuzz targets link touches nothing of the real one: its calls
/// of the C library carry the names of this one's.
struct FakeMachine {
    std::optional<std::string> pidFile;  ///< its bytes; nothing when there is no such file
    bool processLives = false;           ///< the process that the pid file names
    std::string processName = "nevo";    ///< its short name
    int processId = 0;                   ///< its number in the process table
    bool canStart = true;                ///< whether a process can be made
    int exitStatus = 0;                  ///< of the program that is started
    std::optional<std::string> answer;   ///< of the service to a connection; nothing: none listens

    /// What was done to it.
    std::vector<std::pair<int, int>> signals;  ///< process and signal, but for tests of life
    std::vector<std::string> starts;           ///< the standard input of each program started
    int openFiles = 0;                         ///< descriptors not closed
};

/// The one of this process.
FakeMachine& machine();
