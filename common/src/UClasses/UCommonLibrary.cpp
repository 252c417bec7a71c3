#include "UCommonLibrary.h"

#include "CString.h"
#include "ForkHooks.h"
#include "FormattedLog.h"
#include "IUErrorLog.h"

// Here rather than with the interface: whoever uses the pointer gets the object behind it.
constinit UErrorLogPointer errorLog;

UCommonLibrary::UCommonLibrary() {
    if (errorLog == nullptr) errorLog = &m_log;
}

UCommonLibrary::~UCommonLibrary() {
    releaseResources();
    errorLog = nullptr;
}

namespace {

UCommonLibrary s_library;

}  // namespace

void writeFormatted(IUErrorLog& log, const char* format, va_list args) {
    if (&log == &s_library.log()) {
        s_library.log().WriteLogFormat(format, args);
        return;
    }
    CString text;
    text.FormatV(format, args);
    log.WriteLogStr(text);
}

void prepareLogForFork() { s_library.log().PrepareFork(); }

void resumeLogInParent() { s_library.log().AfterForkInParent(); }

void resumeLogInChild() { s_library.log().AfterForkInChild(); }
