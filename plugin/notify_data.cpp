#include "notify_data.h"

#include "plugin_log.h"

namespace {

streamData h_js = {};
streamData s_js = {};
streamData nevo_http = {};

void initNotifyData(streamData* record, int type) {
    record->text = "";
    record->file = nullptr;
    record->type = type;
    for (int& field : record->reserved) field = 0;
}

void destroyNotifyData(streamData* record) {
    PluginWriteLog(3, "[destroyNotifyData] destroying notify data of type = %d\n", record->type);
    record->text.Empty();
    if (record->file != nullptr) {
        fclose(record->file);
        record->file = nullptr;
    }
    PluginWriteLog(3, "[destroyNotifyData] Done destroying notify data of type = %d\n",
                   record->type);
}

}  // namespace

streamData* const g_h_js = &h_js;
streamData* const g_s_js = &s_js;
streamData* const g_nevo_http = &nevo_http;

void initAllNotifyData() {
    initNotifyData(g_h_js, kNotifyScript);
    initNotifyData(g_s_js, kNotifyPageResult);
    initNotifyData(g_nevo_http, kNotifyNevoHttp);
}

void destroyAllNotifyData() {
    destroyNotifyData(g_h_js);
    destroyNotifyData(g_s_js);
    destroyNotifyData(g_nevo_http);
}
