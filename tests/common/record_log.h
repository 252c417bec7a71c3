#pragma once

#include <string>
#include <vector>

#include "item_log.h"

/// The process's log while it lives: keeps every finished item in order. For one thread.
class RecordLog final : public ItemLog {
  public:
    /// Starts at `level`, which is not among the items.
    explicit RecordLog(int level = 1) {
        SetLogLevel(level);
        clear();
        errorLog = this;
    }
    ~RecordLog() override { errorLog = nullptr; }
};

/// `record` with its third field, the source line, as "LINE" where that is a number above 0.
inline std::string withoutLine(const std::string& record) {
    const std::size_t unit = record.find(", ");
    const std::size_t line = record.find(", ", unit + 2) + 2;
    const std::size_t end = record.find(',', line);
    if (unit == std::string::npos || line < 2 || end == std::string::npos) return record;
    const std::string number = record.substr(line, end - line);
    const bool isLine = !number.empty() && number != "0" &&
                        number.find_first_not_of("0123456789") == std::string::npos;
    return isLine ? record.substr(0, line) + "LINE" + record.substr(end) : record;
}

/// All records of `log`, in order, each `withoutLine`.
inline std::vector<std::string> recordsOf(const RecordLog& log) {
    std::vector<std::string> records;
    for (const std::string& item : log.items()) records.push_back(withoutLine(item));
    return records;
}
