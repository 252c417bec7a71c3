#pragma once

#include <atomic>

#include "CString.h"

/// The interface through which every part of the system logs.
///
/// A log object writes finished lines with one primitive, `WriteLogItem`; the other writers put a
/// priority column in front of a text and hand it on. The five comma-separated fields of a line
/// are priority, source file, source line, function and text; ordinary items leave the middle
/// three empty.
///
/// Levels and priorities are signed numbers: BASIC 0 to 31, EXTENDED 32 to 63. Texts carry their
/// own line ends and are written as given.
///
/// Threads: the level may be read and set from any thread. Whether writes may come from several
/// threads is the implementation's promise.
class IUErrorLog {
  public:
    /// Opens the log called `name` with the C library's file `mode`.
    /// @return 0, or the system error number of the failed open.
    virtual int Open(const char* name, const char* mode) = 0;

    /// Closes the log; writes go nowhere until the next `Open`. @return 0.
    virtual int Close() = 0;

    /// Formats with printf rules, cut to 5119 characters, and writes with priority 0 at any level.
    /// A null format writes a fixed complaint instead; a text that the C library cannot format is
    /// empty. @return what `WriteErrorStr` returns.
    virtual int WriteLog(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// As above with a priority; writes nothing and returns 0 when `priority` is above the level.
    virtual int WriteLog(int priority, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    /// Writes `text` with priority 0 when the level is at least 1.
    /// @return what `WriteLogItem` returns, or 0 when nothing was written.
    virtual int WriteLogStr(const char* text);

    /// Writes `text` with `priority`, which is printed but not compared, when the level is at
    /// least 1. @return as above.
    virtual int WriteLogStr(int priority, const char* text);

    /// Writes `text` with priority 0 at any level. @return what `WriteLogItem` returns.
    virtual int WriteErrorStr(const char* text);

    /// Writes `length` raw bytes. @return `length`, or -1.
    virtual int WriteLogByte(unsigned char* data, unsigned int length) = 0;

    /// Writes `text` with priority 4 and `length` raw bytes behind it. @return `length`, or -1.
    virtual int WriteLogByte(const char* text, unsigned char* data, unsigned int length) = 0;

    /// Writes `length` bytes as lines of up to 32 hexadecimal values when the level is at least
    /// `priority`. @return 0.
    virtual int WriteAsHex(int priority, unsigned char* data, unsigned int length);

    /// Writes one finished line.
    /// @return the length of `text`, or -1 when it could not be written.
    virtual int WriteLogItem(const char* text) = 0;

    /// @return the log's file name, owned by the log, or null.
    virtual const char* GetLogName() = 0;

    /// @return the level; 1 until it is set.
    virtual int GetLogLevel();

    /// Stores `level`, 0 as 1; a change is itself logged at any level. @return 0.
    virtual int SetLogLevel(int level);

    /// Sets a named parameter of the implementation; this one knows none.
    virtual void setParam(const char* name, const char* value);

    virtual ~IUErrorLog() = default;

  private:
    // Read by every writer without a lock: a stale level costs at most one line.
    std::atomic<int> m_level{1};
};

/// A pointer to the process's log object that any thread may read while another sets it.
/// It owns nothing; test it for null before each use.
class UErrorLogPointer {
  public:
    constexpr UErrorLogPointer() = default;
    UErrorLogPointer& operator=(IUErrorLog* log) {
        m_log.store(log, std::memory_order_release);
        return *this;
    }
    UErrorLogPointer(const UErrorLogPointer&) = delete;
    UErrorLogPointer& operator=(const UErrorLogPointer&) = delete;

    operator IUErrorLog*() const { return m_log.load(std::memory_order_acquire); }
    IUErrorLog* operator->() const { return *this; }

  private:
    std::atomic<IUErrorLog*> m_log{nullptr};
};

/// The process's log object; null while there is none, and then all logging is skipped.
extern UErrorLogPointer errorLog;
