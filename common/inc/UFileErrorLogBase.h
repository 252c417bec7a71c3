#pragma once

#include <atomic>

#include "CString.h"
#include "IUErrorLog.h"
#include "UObject.h"

class LogLineHeader;

/// What a log in a file has beside the file: the module it speaks for, its settings, and the
/// headers of a file, of a run and of a line.
///
/// Threads: `setParam` may be called from any thread while others write.
class UFileErrorLogBase : public UObject, public IUErrorLog {
  public:
    ~UFileErrorLogBase() override = default;

    /// Sets the module name, which stands in every line and names the module's level in the
    /// settings, when `name` is exactly "module_name". Other names are ignored; a null `value`
    /// counts as "". A name that finds no memory is not taken.
    void setParam(const char* name, const char* value) override;

  protected:
    UFileErrorLogBase();

    /// Stores the size in bytes of the file called `path`. @return false when there is none.
    static bool getFileSize(const char* path, unsigned long long& size);

    /// @return the block that begins a file: what system this is.
    static CString generateFileHeader();

    /// Fills `header` in for a line that this thread writes now.
    /// @return false when the C library cannot tell the local time.
    bool generateLogLineHeader(LogLineHeader& header) const;

    /// @return whether the file called `path` is larger than the rotation size.
    bool needRotation(const char* path) const;

    /// Takes level and rotation size from the user's settings file.
    void readSettings();

    /// Writes the lines that begin a run, as ordinary items.
    void printStartUpHeader();

  private:
    CString m_moduleName;
    const int m_processId;
    std::atomic<unsigned int> m_rotationSize;
};
