#pragma once

#include <optional>

/// Reads the process id that the service wrote to its pid file.
///
/// The file is read afresh and never waited for. The number is read as scanf's "%d" reads it: white
/// space is skipped, one sign may stand before the digits, what follows is ignored. A number that
/// does not fit becomes the nearest int, which is no process's id.
/// @return the number, 0 when the file does not begin with one, nothing when it cannot be opened.
std::optional<int> readServicePid();
