#pragma once

#include <string>
#include <vector>

#include "IUErrorLog.h"

/// A log object with nothing of its own but what the interface leaves to it: it keeps the finished
/// lines, so that tests see what the interface itself makes of every call. For one thread.
class RecordingLog : public IUErrorLog {
  public:
    int Open(const char* /*name*/, const char* /*mode*/) override { return 0; }
    int Close() override { return 0; }
    int WriteLogByte(unsigned char* /*data*/, unsigned int /*length*/) override { return 0; }
    int WriteLogByte(const char* /*text*/, unsigned char* /*data*/,
                     unsigned int /*length*/) override {
        return 0;
    }
    int WriteLogItem(const char* text) override {
        items.emplace_back(text);
        return itemResult;
    }
    const char* GetLogName() override { return nullptr; }

    std::vector<std::string> items;
    int itemResult = 1234;
};
