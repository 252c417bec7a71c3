#pragma once

#include "UFileErrorLog.h"

/// The library's process-wide objects: the file log that `errorLog` points to.
///
/// There is one static instance, in every program and module that uses `errorLog`. It is made
/// during static initialisation, and a program's exit or a module's unloading destroys it: threads
/// that log must have ended by then.
class UCommonLibrary {
  public:
    /// Publishes the log through `errorLog` if no other is there yet.
    UCommonLibrary();
    /// Sets `errorLog` to null, then closes the log.
    ~UCommonLibrary();
    UCommonLibrary(const UCommonLibrary&) = delete;
    UCommonLibrary& operator=(const UCommonLibrary&) = delete;

    /// Does nothing.
    void releaseResources() {}

    /// @return the log, owned by this object.
    UFileErrorLog& log() { return m_log; }

  private:
    UFileErrorLog m_log;
};
