#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <span>
#include <string_view>

#include "CString.h"
#include "UCriticalSection.h"
#include "UFileErrorLogBase.h"

/// The log of a component in a text file of the user's. Each item begins with date, time, process,
/// thread and module; it is with the system before the call returns. A file that has outgrown the
/// size in the settings is renamed to its name and ".bak", of which there is one, and begun anew.
///
/// Threads: any thread may call anything. Items and byte blocks are written one at a time under the
/// object's lock, which `Close` takes too. `Open` takes none: of several at once one wins.
/// Errors: no operation raises anything. Until `Open` has succeeded, every write returns -1 and
/// writes nothing. What a full disk does not take of an item is lost without a word; of a byte
/// block, it is logged.
class UFileErrorLog : public UFileErrorLogBase {
  public:
    UFileErrorLog() = default;
    ~UFileErrorLog() override;

    /// Opens the file called `name` ("log.txt" for a null or empty one) in the C library's `mode`,
    /// takes level and rotation size from the settings, makes the user's logs folder, gives the
    /// file its permissions, and writes the file header if it is empty and the header of a run.
    /// Does nothing when a file is open already. A named pipe is refused with ENXIO.
    /// @return 0, or the system error number.
    int Open(const char* name, const char* mode) override;

    /// Closes the file. @return 0.
    int Close() override;

    /// Writes the header of a line and `text`, to which no line end is added; null counts as "".
    /// @return the length of `text`, whatever the disk took of it; -1 when no file is open or the
    /// C library cannot tell the time.
    int WriteLogItem(const char* text) override;

    /// Writes `length` bytes without a header, and an empty line.
    /// @return `length`; -1 when no file is open, `data` is null, or the disk did not take it all,
    /// which is logged.
    int WriteLogByte(unsigned char* data, unsigned int length) override;

    /// Writes the header of a line, `text` with priority 4, `length` bytes and a line end.
    /// @return `length`; -1 when no file is open, `data` is null, or the C library cannot tell the
    /// time.
    int WriteLogByte(const char* text, unsigned char* data, unsigned int length) override;

    /// @return the name last given to `Open`, "" before that; good until another name is given.
    const char* GetLogName() override;

    /// Writes what `WriteLogStr` would write of the text that `CString::FormatV` makes of `format`
    /// and `args`, without putting the text together first; null counts as "".
    /// @return 0, also when the level forbids it; -1 when no file is open or the C library cannot
    /// tell the time.
    int WriteLogFormat(const char* format, va_list args) __attribute__((format(printf, 2, 0)));

    /// For the thread that forks, around the fork as the functions of ForkHooks.h do: the child may
    /// log then, whatever other threads were writing. Its lines carry the parent's process id.
    void PrepareFork();
    void AfterForkInParent();
    void AfterForkInChild();

  private:
    /// Writes the header of a line, `column` and the pieces of a text. @return 0, or -1.
    int WriteLine(std::string_view column, std::span<const std::string_view> text);

    /// Counts a write and, every 50th time, rotates the file if it has grown too large.
    void CheckForRotation();

    UCriticalSection m_lock;
    CString m_fileName;
    // Set by Open without the lock, so that only one of several can have its file.
    std::atomic<std::FILE*> m_file{nullptr};
    unsigned int m_writes = 0;
};
