#include "plugin_instance.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "launcher.h"
#include "notify_data.h"
#include "npn_gate.h"
#include "page_parameters.h"
#include "plugin_identity.h"
#include "plugin_log.h"
#include "vpn_control.h"

CString g_password;
CString g_installationMethod;

namespace {

constexpr int kStatusFailed = 1;

using OwnedString = CString* nsPluginInstance::*;

constexpr OwnedString kStrings[] = {&nsPluginInstance::data,        &nsPluginInstance::urlBuffer,
                                    &nsPluginInstance::hostRootUrl, &nsPluginInstance::signature,
                                    &nsPluginInstance::nevoUrl,     &nsPluginInstance::nevoSize};

struct FreeRecord {
    void operator()(nsPluginInstance* record) const {
        for (const OwnedString string : kStrings) delete (record->*string);
        record->~nsPluginInstance();
        free(record);
    }
};
using Record = std::unique_ptr<nsPluginInstance, FreeRecord>;

// A zero-filled record for one embedding; null when there is no memory.
Record allocateRecord(NPP instance) {
    PluginWriteLog(3, "[NS_NewPluginInstance] Memory allocation: %d\n",
                   static_cast<int>(sizeof(nsPluginInstance)));
    void* memory = calloc(1, sizeof(nsPluginInstance));
    if (memory == nullptr) {
        PluginWriteLog(
            0, "[NS_NewPluginInstance] ERROR! Cannot allocate memory for plugin instance\n");
        return nullptr;
    }
    Record record(new (memory) nsPluginInstance{});
    record->npp = instance;
    record->doNotTerminate = 1;
    return record;
}

bool allocateStrings(nsPluginInstance& record) {
    bool complete = true;
    for (const OwnedString string : kStrings) {
        record.*string = new (std::nothrow) CString;
        complete = complete && record.*string != nullptr;
    }
    if (!complete) {
        PluginWriteLog(0, "[NS_NewPluginInstance] ERROR! cannot allocate memory for new string\n");
    }
    return complete;
}

// The launch text always ends with the process that the plug-in runs in.
void appendBrowserPid(CString& launchText) {
    char pid[48];
    snprintf(pid, sizeof pid, "%d&", getpid());
    launchText += "browser_pid=";
    launchText += pid;
}

const char* text(const CString* string) { return *string; }

void readParameters(const tagPluginCreateData& createData, nsPluginInstance* record,
                    PageParameters& parameters) {
    PluginWriteLog(4, "[NS_NewPluginInstance] Parsing input arguments, count='%d'\n",
                   createData.argc);
    readPageParameters(createData, record, parameters);
    PluginWriteLog(5, "[NS_NewPluginInstance] %d. hosturl=%s, nevoURL=%s. nevosize=%s\n",
                   createData.argc, text(record->hostRootUrl), text(record->nevoUrl),
                   text(record->nevoSize));
    appendBrowserPid(parameters.launchText);
    PluginWriteLog(0, "[NS_NewPluginInstance] vpnA:='%s'\n", text(&parameters.launchText));
    PluginWriteLog(0,
                   "[NS_NewPluginInstance] install='%d' plugin->probeVpn='%d' _last_param='%d'\n",
                   parameters.install, record->probeVpn, parameters.lastParam);
}

int probe(nsPluginInstance* record) {
    const int result = NS_ProbeVpn(record);
    if (result != kProbeSent) {
        PluginWriteLog(2, "[NS_NewPluginInstance] Error call of NS_probeVpn. '%d'\n", result);
    }
    return result;
}

int launch(nsPluginInstance* record, const char* launchText) {
    PluginWriteLog(2, "[NS_NewPluginInstance] NS_LaunchVpn\n");
    const int result = NS_LaunchVpn(record, launchText, 0);
    if (result == kJustStarted || result == kAlreadyRunning || result == kNotInstalled) return 0;
    PluginWriteLog(2, "[NS_NewPluginInstance] Error call of NS_LaunchVpn. '%d'\n", result);
    return kStatusFailed;
}

// Starts what the page asks for; a probe takes precedence over a launch.
int startAction(nsPluginInstance* record, const PageParameters& parameters) {
    if (record->probeVpn == 1) return probe(record);
    if (parameters.lastParam == 1) return launch(record, parameters.launchText);
    if (parameters.install == 0) {
        PluginWriteLog(3, "[NS_NewPluginInstance] nothing to do\n");
        record->doNotTerminate = 1;
    }
    return 0;
}

int setUp(const tagPluginCreateData& createData, nsPluginInstance* record) {
    const bool complete = allocateStrings(*record);
    initAllNotifyData();
    if (!complete) return kStatusFailed;

    PageParameters parameters;
    readParameters(createData, record, parameters);
    return startAction(record, parameters);
}

}  // namespace

nsPluginInstance* NS_NewPluginInstance(tagPluginCreateData* createData) {
    PluginOpenLog();
    if (createData == nullptr) {
        PluginWriteLog(0,
                       "[NS_NewPluginInstance] ERROR! Incorrect input arguments. "
                       "nsPluginCreateData cannot be NULL\n");
        return nullptr;
    }
    PluginWriteLog(0, "[NS_NewPluginInstance] User Agent:'%s'\n",
                   NPN_UserAgent(createData->instance));
    Record record = allocateRecord(createData->instance);
    if (!record) return nullptr;
    const int status = setUp(*createData, record.get());
    PluginWriteLog(2, "[NS_NewPluginInstance] Done\n");
    return status == kStatusFailed ? nullptr : record.release();
}

void NS_DestroyPluginInstance(nsPluginInstance* record) {
    PluginWriteLog(4, "[NS_DestroyPluginInstance] doNotTerminate = %d\n", record->doNotTerminate);
    if (record->doNotTerminate == 0) LaunchVPN(*record->data, 1);
    Record(record).reset();
    destroyAllNotifyData();
    PluginCloseLog();
}

bool PluginInstance_init(nsPluginInstance* record, NPWindow* window) {
    PluginWriteLog(4, "[PluginInstance_init]\n");
    if (record == nullptr || window == nullptr) {
        PluginWriteLog(0,
                       "[PluginInstance_init] ERROR! Invalid input arguments, nsPluginInstance or "
                       "NPWindow cannot be NULL\n");
        return false;
    }
    record->window = window;
    record->initialized = true;
    return true;
}

void PluginInstance_shut(nsPluginInstance* record) {
    PluginWriteLog(4, "[PluginInstance_shut]\n");
    record->window = nullptr;
    record->initialized = false;
}

bool PluginInstance_isInitialized(nsPluginInstance* record) {
    PluginWriteLog(4, "[PluginInstance_isInitialized]\n");
    if (record == nullptr) {
        PluginWriteLog(0,
                       "[PluginInstance_isInitialized] ERROR! Invalid input arguments, "
                       "nsPluginInstance cannot be NULL\n");
        return false;
    }
    PluginWriteLog(4, "[PluginInstance_isInitialized] Initialized=%d\n", record->initialized);
    return record->initialized;
}

const char* PluginInstance_getVersion(nsPluginInstance* record) {
    PluginWriteLog(4, "[PluginInstance_getVersion]\n");
    return record != nullptr ? NPN_UserAgent(record->npp) : "";
}

NPError PluginInstance_SetWindow(nsPluginInstance* record, NPWindow* window) {
    if (record != nullptr) record->window = window;
    return NPERR_NO_ERROR;
}

NPError PluginInstance_GetValue(nsPluginInstance* record, NPPVariable variable, void* value) {
    PluginWriteLog(4, "[PluginInstance_GetValue]\n");
    // Without a place for the answer, whatever is asked is a bad parameter.
    switch (value != nullptr ? variable : NPPVariable{}) {
        case NPPVpluginNameString:
            *static_cast<const char**>(value) = plugin_identity::kName;
            return NPERR_NO_ERROR;
        case NPPVpluginDescriptionString:
            *static_cast<const char**>(value) = plugin_identity::kDescription;
            return NPERR_NO_ERROR;
        case NPPVpluginScriptableNPObject:
            if (record->scriptableObject != nullptr) {
                PluginWriteLog(2, "[PluginInstance_GetValue] Plugin is scriptable\n");
                NPN_RetainObject(record->scriptableObject);
                *static_cast<NPObject**>(value) = record->scriptableObject;
            }
            return NPERR_NO_ERROR;
        default:
            PluginWriteLog(
                2, "[PluginInstance_GetValue] bad param: NPPVariable='%d' not implemented\n",
                variable);
            return NPERR_INVALID_PARAM;
    }
}

NPError PluginInstance_SetValue(nsPluginInstance* /*record*/, NPNVariable /*variable*/,
                                void* /*value*/) {
    return NPERR_NO_ERROR;
}

void PluginInstance_Print(nsPluginInstance* /*record*/, NPPrint* /*platformPrint*/) {}
