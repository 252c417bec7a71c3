#pragma once

#include <string>
#include <vector>

#include "IUErrorLog.h"

/// The process's log while it lives: keeps every finished item in order. For one thread.
class RecordLog final : public IUErrorLog {
  public:
    /// Starts at `level`, which is not among the items.
    explicit RecordLog(int level = 1) {
        SetLogLevel(level);
        m_items.clear();
        errorLog = this;
    }
    ~RecordLog() override { errorLog = nullptr; }

    int WriteLogItem(const char* text) override {
        m_items.emplace_back(text);
        return static_cast<int>(m_items.back().size());
    }

    int Open(const char* /*name*/, const char* /*mode*/) override { return 0; }
    int Close() override { return 0; }
    int WriteLogByte(unsigned char* /*data*/, unsigned int /*length*/) override { return -1; }
    int WriteLogByte(const char* /*text*/, unsigned char* /*data*/,
                     unsigned int /*length*/) override {
        return -1;
    }
    const char* GetLogName() override { return nullptr; }
    using IUErrorLog::WriteLog;

    const std::vector<std::string>& items() const { return m_items; }

  private:
    std::vector<std::string> m_items;
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
