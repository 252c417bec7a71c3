#include "plugin_log.h"

#include <cstdarg>

#include "CString.h"
#include "FormattedLog.h"
#include "IUErrorLog.h"
#include "ULogSettings.h"
#include "UserFolders.h"
#include "plugin_identity.h"

namespace {

constexpr char kModuleName[] = "nevo_plugin";
constexpr char kLogFile[] = "/Library/Logs/Zerva/nevo_plugin.log";

// Does something with the log, if there is one. What fails there, which only a full memory makes it
// do, must not cost the page its connection.
template <typename Action>
void withLog(Action action) noexcept {
    IUErrorLog* log = errorLog;
    if (log == nullptr) return;
    try {
        action(*log);
    } catch (...) {
    }
}

void writeBanner() {
    constexpr char kRule[] =
        "[PluginOpenLog] -------------------------------------------------------------\n";
    PluginWriteLog(0, "%s", kRule);
    PluginWriteLog(0, "[PluginOpenLog] Plugin name:'%s'\n", plugin_identity::kName);
    PluginWriteLog(0, "[PluginOpenLog] Plugin version:'%s'\n", plugin_identity::kVersion);
    PluginWriteLog(0, "[PluginOpenLog] Plugin mime:'%s'\n", plugin_identity::kMimeDescription);
    PluginWriteLog(0, "%s", kRule);
}

}  // namespace

void PluginOpenLog() {
    if (errorLog == nullptr) return;
    const CString path = getCurrentUserHomeFolder() + kLogFile;
    errorLog->setParam("module_name", kModuleName);
    errorLog->Open(path, "a");
    errorLog->SetLogLevel(static_cast<int>(ULogSettings::getModuleLogLevel(kModuleName)));
    writeBanner();
}

void PluginWriteLog(int /*level*/, const char* format, ...) noexcept {
    va_list args;
    va_start(args, format);
    withLog([&](IUErrorLog& log) { writeFormatted(log, format, args); });
    va_end(args);
}

void PluginCloseLog() noexcept {
    withLog([](IUErrorLog& log) { log.Close(); });
}
