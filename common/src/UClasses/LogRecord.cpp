#include "LogRecord.h"

#include "IUErrorLog.h"
#include "StrFormat.h"

CString makeLogRecord(int level, const char* unit, unsigned int line, const char* function,
                      const char* text) {
    return static_cast<const char*>(
        sfmt("%1, %2, %3, %4, %5\n", level, unit, line, function, text));
}

void writeLogRecord(int level, const SourcePlace& place, const char* function,
                    const char* text) noexcept {
    try {
        IUErrorLog* const log = errorLog;
        if (log == nullptr || log->GetLogLevel() < level) return;
        log->WriteLogItem(makeLogRecord(level, sourceUnit(place.file), place.line, function, text));
    } catch (...) {
        // The log is the last place that could have been told.
    }
}
