#pragma once

#include <string>

/// Names the rows of a parameter table after their `rule`.
inline constexpr auto nameOfRow = [](const auto& row) { return std::string(row.param.rule); };
