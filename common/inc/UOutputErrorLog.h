#pragma once

#include "IUErrorLog.h"
#include "UObject.h"

/// A log that shows its items on standard output and keeps nothing.
///
/// Threads: any thread may write; each item comes out whole. No operation raises anything.
class UOutputErrorLog : public UObject, public IUErrorLog {
  public:
    ~UOutputErrorLog() override = default;

    /// Does nothing. @return 0.
    int Open(const char* name, const char* mode) override;
    /// Does nothing. @return 0.
    int Close() override;
    /// @return null: there is no file.
    const char* GetLogName() override;
    /// Prints time and thread id, `text` (null counts as ""), a line end if it has none, and one
    /// more line end in every case. @return 0, whatever becomes of it.
    int WriteLogItem(const char* text) override;
    /// Does nothing. @return 0.
    int WriteLogByte(unsigned char* data, unsigned int length) override;
    /// Does nothing. @return 0.
    int WriteLogByte(const char* text, unsigned char* data, unsigned int length) override;
};
