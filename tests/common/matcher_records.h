#pragma once

#include <string>
#include <vector>

#include "record_log.h"

/// What matchers log, without line numbers.

using Records = std::vector<std::string>;

inline std::string raised(const std::string& function, const std::string& message,
                          const std::string& unit = "/str_helper") {
    return "1, " + unit + ", LINE, " + function + ", EXCEPTION - " + message + "\n";
}

inline std::string caught(const std::string& operation) {
    return "1, /str_helper, LINE, , EXCEPTION caught: " + operation + " - EXCEPTION\n";
}

/// @return the source line that the first of `records` with `text` in it names; "" without one.
inline std::string lineOf(const Records& records, const std::string& text) {
    for (const std::string& record : records) {
        if (record.find(text) == std::string::npos) continue;
        const std::size_t line = record.find(", ", record.find(", ") + 2) + 2;
        return record.substr(line, record.find(',', line) - line);
    }
    return "";
}

/// @return the records that `action` writes at level 1.
template <class Action>
Records recordsOf(Action action) {
    const RecordLog log;
    action();
    return recordsOf(log);
}
