#include "UOutputErrorLog.h"

#include <array>
#include <cstdio>
#include <exception>
#include <string_view>

#include "CString.h"
#include "LogClock.h"

int UOutputErrorLog::Open(const char* /*name*/, const char* /*mode*/) { return 0; }

int UOutputErrorLog::Close() { return 0; }

const char* UOutputErrorLog::GetLogName() { return nullptr; }

int UOutputErrorLog::WriteLogItem(const char* text) try {
    const LogMoment now;
    const std::string_view time = now.time();
    std::array<char, 32> thread;
    snprintf(thread.data(), thread.size(), ", (%lu)  ", static_cast<unsigned long>(logThreadId()));
    CString line(time.data(), static_cast<int>(time.size()));
    line += thread.data();
    line += text;
    if (line[line.GetLength() - 1] != '\n') line += "\r\n";
    std::puts(line);
    return 0;
} catch (const std::exception&) {
    return 0;
}

int UOutputErrorLog::WriteLogByte(unsigned char* /*data*/, unsigned int /*length*/) { return 0; }

int UOutputErrorLog::WriteLogByte(const char* /*text*/, unsigned char* /*data*/,
                                  unsigned int /*length*/) {
    return 0;
}
