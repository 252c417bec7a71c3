#include "browser_request.h"

#include <climits>
#include <cstring>
#include <stdexcept>

#include "npn_gate.h"
#include "plugin_log.h"

void assemble(CString& url, std::initializer_list<std::string_view> pieces) {
    size_t length = 0;
    for (const std::string_view piece : pieces) length += piece.size();
    if (length > INT_MAX) throw std::length_error("URL is longer than 2 GiB");

    url = "";  // keeps the block; a block that must grow then copies nothing
    char* end = url.GetBuffer(static_cast<int>(length));
    for (const std::string_view piece : pieces) {
        memcpy(end, piece.data(), piece.size());
        end += piece.size();
    }
    url.ReleaseBuffer(static_cast<int>(length));
}

void logRefusal(NPError result, const char* caller, const char* url) {
    if (result == NPERR_NO_ERROR) return;
    PluginWriteLog(0, "[%s] ERROR! cannot call GetURL. url='%s', errorcode='%d'\n", caller, url,
                   result);
}

NPError requestUrlBuffer(const nsPluginInstance& record, streamData* notifyData,
                         const char* caller) {
    // The browser reads the URL during the call, whatever becomes of the record.
    const CString url = *record.urlBuffer;
    const NPError result = NPN_GetURLNotify(record.npp, url, nullptr, notifyData);
    logRefusal(result, caller, url);
    return result;
}
