#pragma once

#include "IUErrorLog.h"

/// A log object that takes everything and keeps nothing: tests override what they look at.
class BareLog : public IUErrorLog {
  public:
    int Open(const char* /*name*/, const char* /*mode*/) override { return 0; }
    int Close() override { return 0; }
    int WriteLogItem(const char* /*text*/) override { return 0; }
    int WriteLogByte(unsigned char* /*data*/, unsigned int /*length*/) override { return 0; }
    int WriteLogByte(const char* /*text*/, unsigned char* /*data*/,
                     unsigned int /*length*/) override {
        return 0;
    }
    const char* GetLogName() override { return nullptr; }
};
