#pragma once

#include "SourcePlace.h"

/// The log's five-field record, made here and nowhere else: "level, source unit, line, function,
/// text" and a line end. Any thread may call these.

/// @return the record as one line. Null texts count as "".
CString makeLogRecord(int level, const char* unit, unsigned int line, const char* function,
                      const char* text);

/// Writes a record to `errorLog` when that is set and its level is at least `level`. Raises
/// nothing: a record for which there is no memory is lost.
void writeLogRecord(int level, const SourcePlace& place, const char* function,
                    const char* text) noexcept;
