#include "plugin_log.h"

#include <cstdarg>

#include "CString.h"
#include "IUErrorLog.h"
#include "ULogSettings.h"
#include "UserFolders.h"

namespace {

constexpr char kModuleName[] = "nevo_plugin";
constexpr char kLogFile[] = "/Library/Logs/Zerva/nevo_plugin.log";

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
    const CString path = CString(getCurrentUserHomeFolder()) + kLogFile;
    errorLog->setParam("module_name", kModuleName);
    errorLog->Open(path, "a");
    errorLog->SetLogLevel(static_cast<int>(ULogSettings::getModuleLogLevel(kModuleName)));
    writeBanner();
}

void PluginWriteLog(int /*level*/, const char* format, ...) noexcept {
    if (errorLog == nullptr) return;
    va_list args;
    va_start(args, format);
    try {
        CString line;
        line.FormatV(format, args);
        errorLog->WriteLogStr(line);
    } catch (...) {
        // A line lost to a full memory must not cost the page its connection.
    }
    va_end(args);
}

void PluginCloseLog() {
    if (errorLog != nullptr) errorLog->Close();
}
