#pragma once

#include "UCriticalSection.h"
#include "UMutex.h"
#include "WaitResult.h"

/// Holds a lock for the length of a scope. It owns nothing; the lock must outlive it, and the
/// thread that made it ends it.
class UAutoSync {
  public:
    /// Takes `section`. The other two are accepted and not used.
    explicit UAutoSync(UCriticalSection& section, unsigned int /*timeout*/ = kWaitForever,
                       const char* /*name*/ = nullptr)
        : m_section(&section) {
        m_section->Lock();
    }

    /// Gives the lock back; what that raises comes out.
    ~UAutoSync() noexcept(false) {
        if (m_mutex != nullptr) {
            m_mutex->Release();
        } else {
            m_section->Unlock();
        }
    }

    UAutoSync(const UAutoSync&) = delete;
    UAutoSync& operator=(const UAutoSync&) = delete;

  private:
    // No constructor sets it; part of the class as it has always been, kept on purpose.
    UMutex* m_mutex = nullptr;
    UCriticalSection* m_section;
};
