#include "npp_gate.h"

#include "entry_guard.h"
#include "npn_gate.h"
#include "plugin_instance.h"
#include "relay.h"
#include "scriptable.h"

namespace {

// What NPP_WriteReady answers when nothing will be kept.
constexpr int32 kAcceptAnything = 0x0FFFFFFF;

nsPluginInstance* recordOf(NPP instance) { return static_cast<nsPluginInstance*>(instance->pdata); }

// The common road of all entries of a living instance.
template <typename Result, typename Body>
Result forward(const char* entry, NPP instance, Result noInstance, Result noRecord,
               Body body) noexcept {
    if (instance == nullptr) return noInstance;
    nsPluginInstance* record = recordOf(instance);
    if (record == nullptr) return noRecord;
    return guardEntry(entry, noRecord, [&] { return body(record); });
}

template <typename Body>
NPError forward(const char* entry, NPP instance, Body body) noexcept {
    return forward(entry, instance, NPERR_INVALID_INSTANCE_ERROR, NPERR_GENERIC_ERROR, body);
}

// The browser draws nothing for us and sends us Cocoa events, none of which is ever handled.
void announceModel(NPP instance) {
    const auto set = [instance](NPPVariable variable, std::intptr_t value) {
        NPN_SetValue(instance, variable, reinterpret_cast<void*>(value));
    };
    set(NPPVpluginWindowBool, 0);
    set(NPPVpluginDrawingModel, NPDrawingModelCoreGraphics);
    set(NPPVpluginEventModel, NPEventModelCocoa);
}

}  // namespace

NPError NPP_New(NPMIMEType type, NPP instance, uint16 mode, int16 argc, char* argn[], char* argv[],
                NPSavedData* saved) {
    if (instance == nullptr) return NPERR_INVALID_INSTANCE_ERROR;
    return guardEntry("NPP_New", NPERR_OUT_OF_MEMORY_ERROR, [&] {
        tagPluginCreateData createData = {instance, type, mode, argc, argn, argv, saved};
        nsPluginInstance* record = NS_NewPluginInstance(&createData);
        if (record == nullptr) return NPERR_OUT_OF_MEMORY_ERROR;
        record->npp = instance;
        announceModel(instance);
        record->scriptableObject = NPN_CreateObject(instance, &sNPClass);
        if (record->scriptableObject != nullptr) NPN_RetainObject(record->scriptableObject);
        instance->pdata = record;
        return NPERR_NO_ERROR;
    });
}

NPError NPP_Destroy(NPP instance, NPSavedData** /*save*/) {
    return forward("NPP_Destroy", instance, NPERR_INVALID_INSTANCE_ERROR, NPERR_NO_ERROR,
                   [instance](nsPluginInstance* record) {
                       // Released once although it was retained twice and for every NPP_GetValue:
                       // kept so, browsers drop the rest with the instance.
                       NPN_ReleaseObject(record->scriptableObject);
                       if (instance->pdata != record)
                           return NPERR_NO_ERROR;  // destroyed by that call
                       PluginInstance_shut(record);
                       NS_DestroyPluginInstance(record);
                       instance->pdata = nullptr;
                       return NPERR_NO_ERROR;
                   });
}

NPError NPP_SetWindow(NPP instance, NPWindow* window) {
    return forward("NPP_SetWindow", instance, [window](nsPluginInstance* record) {
        if (window == nullptr) return NPERR_GENERIC_ERROR;
        if (!PluginInstance_isInitialized(record) && window->window != nullptr &&
            !PluginInstance_init(record, window)) {
            NS_DestroyPluginInstance(record);
            return NPERR_MODULE_LOAD_FAILED_ERROR;
        }
        return PluginInstance_SetWindow(record, window);
    });
}

NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable,
                      uint16* stype) {
    return forward("NPP_NewStream", instance, [=](nsPluginInstance* record) {
        return PluginInstance_NewStream(record, type, stream, seekable, stype);
    });
}

int32 NPP_WriteReady(NPP instance, NPStream* stream) {
    return forward(
        "NPP_WriteReady", instance, kAcceptAnything, kAcceptAnything,
        [=](nsPluginInstance* record) { return PluginInstance_WriteReady(record, stream); });
}

int32 NPP_Write(NPP instance, NPStream* stream, int32 offset, int32 len, void* buffer) {
    return forward("NPP_Write", instance, len, len, [=](nsPluginInstance* record) {
        return PluginInstance_Write(record, stream, offset, len, buffer);
    });
}

NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason) {
    return forward("NPP_DestroyStream", instance, [=](nsPluginInstance* record) {
        return PluginInstance_DestroyStream(record, stream, reason);
    });
}

void NPP_StreamAsFile(NPP instance, NPStream* stream, const char* fname) {
    forward("NPP_StreamAsFile", instance, [=](nsPluginInstance* record) {
        PluginInstance_StreamAsFile(record, stream, fname);
        return NPERR_NO_ERROR;
    });
}

void NPP_Print(NPP instance, NPPrint* platformPrint) {
    forward("NPP_Print", instance, [=](nsPluginInstance* record) {
        PluginInstance_Print(record, platformPrint);
        return NPERR_NO_ERROR;
    });
}

void NPP_URLNotify(NPP instance, const char* url, NPReason reason, void* notifyData) {
    forward("NPP_URLNotify", instance, [=](nsPluginInstance* record) {
        PluginInstance_URLNotify(record, url, reason, notifyData);
        return NPERR_NO_ERROR;
    });
}

NPError NPP_GetValue(NPP instance, NPPVariable variable, void* value) {
    return forward("NPP_GetValue", instance, [=](nsPluginInstance* record) {
        return PluginInstance_GetValue(record, variable, value);
    });
}

NPError NPP_SetValue(NPP instance, NPNVariable variable, void* value) {
    return forward("NPP_SetValue", instance, [=](nsPluginInstance* record) {
        return PluginInstance_SetValue(record, variable, value);
    });
}

int16 NPP_HandleEvent(NPP /*instance*/, void* /*event*/) { return 0; }
