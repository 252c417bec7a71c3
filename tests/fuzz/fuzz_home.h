#pragma once

#include <string>

/// A folder that is HOME for the rest of the process, with an empty "Library" in it; made at the
/// first call and removed when the process ends in an orderly way.
const std::string& fuzzHome();

/// Gives the file at `path` these bytes, and its folder if there is none.
void writeFile(const std::string& path, const std::string& bytes);

/// @return the bytes of the file at `path`; none without one.
std::string readFile(const std::string& path);
