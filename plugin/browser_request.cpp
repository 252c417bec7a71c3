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

NPError requestUrl(NPP npp, const char* url, streamData* notifyData, const char* caller,
                   const char* urlInLog) {
    const NPError result = NPN_GetURLNotify(npp, url, nullptr, notifyData);
    if (result != NPERR_NO_ERROR) {
        PluginWriteLog(0, "[%s] ERROR! cannot call GetURL. url='%s', errorcode='%d'\n", caller,
                       urlInLog, result);
    }
    return result;
}

NPError requestUrlBuffer(const nsPluginInstance& record, streamData* notifyData, const char* caller,
                         const char* urlInLog) {
    // The browser reads the URL during the call, whatever becomes of the record.
    const CString urlBuffer = *record.urlBuffer;
    const char* url = urlBuffer;
    return requestUrl(record.npp, url, notifyData, caller, urlInLog != nullptr ? urlInLog : url);
}
