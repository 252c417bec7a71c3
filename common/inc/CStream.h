#pragma once

#include "UObject.h"

/// Something that bytes can be sent to and received from. It owns none of the bytes that it is
/// given; which threads may call is the implementation's promise.
class CStream : public UObject {
  public:
    /// Takes `length` bytes out of the stream into `data`.
    /// @return the number of bytes; 0 or less is a failure.
    virtual long receive(long length, unsigned char* data) = 0;

    /// Puts `length` bytes at `data` into the stream, which only reads them.
    /// @return the number of bytes; 0 or less is a failure.
    virtual long send(long length, unsigned char* data) = 0;

    /// @return whether the stream can be used; this one always says so.
    virtual bool ValidateConnection() { return true; }

    /// Sends on whatever the stream holds back; this one holds nothing. @return 0.
    virtual int flush() { return 0; }
};
