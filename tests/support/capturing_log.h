#pragma once

#include <string>
#include <vector>

#include "IUErrorLog.h"

/// A log object that keeps what it is asked to do: every call with its arguments, in order.
/// Texts are kept without any priority column, as the writer gave them. For one thread.
class CapturingLog final : public IUErrorLog {
  public:
    int Open(const char* name, const char* mode) override;
    int Close() override;
    int WriteLogStr(const char* text) override;
    int WriteLogStr(int priority, const char* text) override;
    int WriteErrorStr(const char* text) override;
    int WriteLogByte(unsigned char* data, unsigned int length) override;
    int WriteLogByte(const char* text, unsigned char* data, unsigned int length) override;
    int WriteLogItem(const char* text) override;
    const char* GetLogName() override { return nullptr; }
    int SetLogLevel(int level) override;
    void setParam(const char* name, const char* value) override;
    using IUErrorLog::WriteLog;

    /// Every call in order: a text written with WriteLogStr(text) as it is, any other call in
    /// angle brackets, such as "<Open(/a/b.log, a)>".
    const std::vector<std::string>& events() const { return m_events; }

    /// The texts written with WriteLogStr(text) alone.
    std::vector<std::string> lines() const;

    /// The lines that begin with `start`.
    std::vector<std::string> linesStarting(const std::string& start) const;

    bool contains(const std::string& part) const;
    void clear() { m_events.clear(); }

    /// The level last set.
    int level() const { return m_level; }

  private:
    int keep(std::string event);

    std::vector<std::string> m_events;
    int m_level = 1;
};
