#pragma once

#include <string>

// The files that plug-in and service share, inside the sandbox.

inline constexpr char kPidFile[] = "/Library/Application Support/Zerva/nevo/var/run/nevo.pid";
inline constexpr char kServiceProgram[] =
    "/Library/Internet Plug-Ins/Zerva SSL VPN Plugin.plugin/Contents/Helpers/nevo";

/// Writes a file, its folders included.
void writeFile(const std::string& path, const std::string& text);

/// @return the file's whole text; empty when there is none.
std::string readFile(const std::string& path);

/// Writes the service's pid file.
void writePidFile(const std::string& text);

/// Puts the stand-in program in the service program's place. What it does is decided by the words
/// in `orders` (see service_stand_in.cpp), which it finds in its environment.
void installService(const std::string& orders = "");

/// Puts a file of any text in the service program's place.
void installServiceFile(const std::string& text, unsigned mode);

/// What the stand-in program noted down about its last run, one fact a line; "" if it never ran.
std::string serviceReport();

/// What the stand-in program read from its standard input.
std::string serviceInput();

/// Removes the program, the pid file and the notes.
void removeServiceFiles();
