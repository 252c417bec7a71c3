#include "relay.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "IUErrorLog.h"
#include "ULogSettings.h"
#include "browser_request.h"
#include "direct_info.h"
#include "nevo_service.h"
#include "npn_gate.h"
#include "pid_file.h"
#include "plugin_log.h"

namespace {

constexpr int32 kBlockSize = 64000;

// How much room an announced length may claim before a single byte has come.
constexpr uint32 kMostAnnounced = 64u << 20;

constexpr char kServiceGone[] = "ssldrop";

constexpr int kLogLevelBasic = 31;
constexpr int kLogLevelExtended = 63;

// Counts the relayed service requests of all instances.
long g_seq = 0;

// Log lines show the low 32 bits of a pointer.
unsigned int lowBits(const void* pointer) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(pointer));
}

const streamData* notifyOf(const NPStream* stream) {
    return static_cast<const streamData*>(stream->notifyData);
}

// Empties `data` but keeps its block, and makes room for the announced length.
void prepareData(CString& data, const NPStream& stream) {
    data = "";
    const int announced = static_cast<int>(std::min(stream.end, kMostAnnounced));
    if (announced > data.GetAllocLength()) data.GetBuffer(announced);
}

// Appends to `data` with geometric growth, so that a long answer costs time linear in its length.
void appendBlock(CString& data, const void* block, int32 size) {
    if (block == nullptr || size <= 0) return;
    const long long length = static_cast<long long>(data.GetLength()) + size;
    if (length > INT_MAX) throw std::length_error("answer is longer than 2 GiB");
    const long long room = data.GetAllocLength();
    const long long wanted = length <= room ? length : std::max(length, 2 * room);
    const int oldLength = data.GetLength();
    char* text = data.GetBuffer(static_cast<int>(std::min<long long>(wanted, INT_MAX)));
    memcpy(text + oldLength, block, static_cast<size_t>(size));
    data.ReleaseBuffer(static_cast<int>(length));
}

// Removes the beginning of a text, in place.
void dropHead(CString& text, int count) {
    const int rest = text.GetLength() - count;
    char* characters = text.GetBuffer(text.GetLength());
    memmove(characters, characters + count, static_cast<size_t>(rest));
    text.ReleaseBuffer(rest);
}

void setLogLevel(int level) {
    if (errorLog != nullptr) errorLog->SetLogLevel(level);
    ULogSettings::setLogLevel(static_cast<unsigned int>(level), 0);
}

// The service switches logging by words in an answer, which is part of the URL that the page has
// just evaluated. Both are looked for; the second wins.
void obeyLoggingWords(const char* url) {
    if (url == nullptr) return;
    if (strstr(url, "LOGGING_DISABLE") != nullptr) setLogLevel(kLogLevelBasic);
    if (strstr(url, "LOGGING_ENABLE") != nullptr) setLogLevel(kLogLevelExtended);
}

// Whether the process that the pid file names is gone. No pid file is no proof.
bool isServiceGone() {
    const std::optional<int> pid = readServicePid();
    if (!pid || kill(*pid, 0) == 0) return false;
    const int error = errno;
    PluginWriteLog(
        0, "[PluginInstance_URLNotify] ERROR! nevo is not running (pid=%d). error=%d, str=%s\n",
        *pid, error, strerror(error));
    return true;
}

// Tells the page that the service is gone. Nothing is asked back: the loop ends here.
void sendServiceGone(nsPluginInstance* record) {
    assemble(*record->urlBuffer, {kCallPage, kServiceGone, kCallPageEnd});
    const CString url = *record->urlBuffer;
    PluginWriteLog(2, "[PluginInstance_URLNotify] call GetURL, buf='%s'\n",
                   static_cast<const char*>(url));
    NPN_GetURL(record->npp, url, nullptr);
}

// Hands the service's answer to the page, as it is but for a header.
void sendToJavaScript(nsPluginInstance* record, const char* /*url*/) {
    CString& data = *record->data;
    PluginWriteLog(2, "[sendToJavaScript] Data from server ='%s'\n",
                   static_cast<const char*>(data));
    const int headerEnd = data.Find(nevo::kBlankLine);
    if (headerEnd > 0) {
        dropHead(data, headerEnd + static_cast<int>(strlen(nevo::kBlankLine)));
        PluginWriteLog(2, "[sendToJavaScript] Data from server corrected='%s'\n",
                       static_cast<const char*>(data));
    }
    assemble(*record->urlBuffer, {kCallPage, view(data), kCallPageEnd});
    PluginWriteLog(2, "[sendToJavaScript] call GetURL, buf='%s'\n",
                   static_cast<const char*>(*record->urlBuffer));
    requestUrlBuffer(*record, g_s_js, "sendToJavaScript");
}

// Hands the page's result to the service as the next command, unless the loop ends with it.
void sendToNevo(nsPluginInstance* record, const char* url) {
    if (record->probeVpn == 1) {
        PluginWriteLog(2, "[sendToNevo] It's probeVpn responce. Terminate work\n");
        return;
    }
    if (record->doNotTerminate != 0) {
        PluginWriteLog(2, "[sendToNevo] Skip browser message!\n");
        return;
    }
    obeyLoggingWords(url);
    if (record->data->IsEmpty()) *record->data = nevo::kInfoCommand;
    char counter[48];
    snprintf(counter, sizeof counter, "&z=%ld", g_seq++);
    assemble(*record->urlBuffer, {nevo::kUrl, "?", view(*record->data), counter});
    PluginWriteLog(2, "[sendToNevo] call GetURLNotify, buf='%s'\n",
                   static_cast<const char*>(*record->urlBuffer));
    requestUrlBuffer(*record, g_nevo_http, "sendToNevo");
}

// Whether the completed request shows that the service is gone for good.
bool isConnectionLost(nsPluginInstance* record, NPReason reason, int type) {
    bool lost = false;
    if (reason == NPRES_NETWORK_ERR) {
        PluginWriteLog(0, "[PluginInstance_URLNotify] ERROR! Network Error.\n");
        lost = type == kNotifyNevoHttp && !GetDataFromNevo(record);
    }
    if (type == kNotifyPageResult && record->doNotTerminate == 0) lost = isServiceGone();
    return lost;
}

}  // namespace

NPError PluginInstance_NewStream(nsPluginInstance* record, NPMIMEType mimeType, NPStream* stream,
                                 NPBool /*seekable*/, uint16* stype) {
    PluginWriteLog(4, "[PluginInstance_NewStream] stream=0x%x, url='%s', mime-type=%s\n",
                   lowBits(stream), stream->url, mimeType);
    if (const streamData* notify = notifyOf(stream)) {
        PluginWriteLog(3, "PluginInstance_NewStream: notify Type(=%d)\n", notify->type);
        if (notify->type >= kNotifyScript && notify->type <= kNotifyNevoHttp) {
            prepareData(*record->data, *stream);
        }
        PluginWriteLog(3, "[PluginInstance_NewStream]  Done type =%d\n", notify->type);
    } else {
        PluginWriteLog(0, "[PluginInstance_NewStream] No notifyData\n");
    }
    *stype = NP_NORMAL;
    return NPERR_NO_ERROR;
}

int32 PluginInstance_WriteReady(nsPluginInstance* /*record*/, NPStream* stream) {
    PluginWriteLog(4, "[PluginInstance_WriteReady] stream=0x%x, url='%s'\n", lowBits(stream),
                   stream->url);
    return kBlockSize;
}

int32 PluginInstance_Write(nsPluginInstance* record, NPStream* stream, int32 /*offset*/, int32 len,
                           void* buffer) {
    PluginWriteLog(4, "[PluginInstance_Write] stream=0x%x, url='%s'\n", lowBits(stream),
                   stream->url);
    const streamData* notify = notifyOf(stream);
    if (notify == nullptr) {
        PluginWriteLog(0, "[PluginInstance_NewStream] No notifyData\n");  // this prefix is kept
        return len;
    }
    PluginWriteLog(4, "[PluginInstance_Write] notify type=%d\n", notify->type);
    if (notify->type == kNotifyPageResult || notify->type == kNotifyNevoHttp) {
        appendBlock(*record->data, buffer, len);
    } else {
        PluginWriteLog(0, "[PluginInstance_Write] Unhandleed type = %d\n", notify->type);
    }
    return len;
}

NPError PluginInstance_DestroyStream(nsPluginInstance* /*record*/, NPStream* stream,
                                     NPReason reason) {
    PluginWriteLog(4, "[PluginInstance_DestroyStream] stream=0x%x, url='%s', reason=%d \n",
                   lowBits(stream), stream->url, reason);
    if (reason == NPRES_NETWORK_ERR) {
        PluginWriteLog(0, "PluginInstance_DestroyStream: Network problem\n");
        return reason;
    }
    if (const streamData* notify = notifyOf(stream)) {
        PluginWriteLog(4, "[PluginInstance_DestroyStream] notify type=%d \n", notify->type);
    }
    return NPERR_NO_ERROR;
}

void PluginInstance_StreamAsFile(nsPluginInstance* /*record*/, NPStream* /*stream*/,
                                 const char* /*fname*/) {}

void PluginInstance_URLNotify(nsPluginInstance* record, const char* url, NPReason reason,
                              void* notifyData) {
    if (notifyData == nullptr) {
        PluginWriteLog(0, "[PluginInstance_URLNotify] ERROR! No notifyData\n");
        return;
    }
    const int type = static_cast<const streamData*>(notifyData)->type;
    PluginWriteLog(5, "[PluginInstance_URLNotify] aPlugin=%d, url=%s, reason=%d, type=%d\n",
                   static_cast<int>(lowBits(record)), url, reason, type);
    if (isConnectionLost(record, reason, type)) {
        sendServiceGone(record);
        return;
    }
    switch (type) {
        case kNotifyPageResult:
            PluginWriteLog(2, "[PluginInstance_URLNotify] respnse notify for (status) SJS ='%s'\n",
                           static_cast<const char*>(*record->data));
            sendToNevo(record, url);
            break;
        case kNotifyNevoHttp:
            PluginWriteLog(2, "[PluginInstance_URLNotify] response notify for NEVO_HTTP ='%s'\n",
                           static_cast<const char*>(*record->data));
            sendToJavaScript(record, url);
            break;
        default:
            PluginWriteLog(2, "[PluginInstance_URLNotify] response notify Unhandled type ='%d'\n",
                           type);
    }
}
