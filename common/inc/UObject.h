#pragma once

#include "CString.h"

/// The common base of the library's classes: an error number and two error texts, for the class
/// derived from it to fill. An object belongs to one thread at a time unless its class says
/// otherwise.
class UObject {
  public:
    UObject() = default;
    virtual ~UObject() = default;

    /// Sets the error number to 0 and the error text to "".
    void resetError() {
        m_errorCode = 0;
        m_errorText.Empty();
    }

  protected:
    UObject(const UObject&) = default;
    UObject& operator=(const UObject&) = default;

    int m_errorCode = 0;
    CString m_errorText;
    /// Where the error comes from. Empty at first; `resetError` leaves it alone.
    CString m_errorSource;
};
