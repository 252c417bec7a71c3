#pragma once

#include "IUErrorLog.h"

/// Makes `log` the process's log for as long as it lives, and the one before it again afterwards.
class AsProcessLog {
  public:
    explicit AsProcessLog(IUErrorLog& log) : m_before(errorLog) { errorLog = &log; }
    ~AsProcessLog() { errorLog = m_before; }
    AsProcessLog(const AsProcessLog&) = delete;
    AsProcessLog& operator=(const AsProcessLog&) = delete;

  private:
    IUErrorLog* const m_before;
};
