#include "browser_table.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "scripted_browser.h"

namespace {

ScriptedBrowser& browser() { return ScriptedBrowser::current(); }

template <typename... Arguments>
NPError noteAndAnswer(const char* entry, const Arguments&... arguments) {
    browser().note(entry, arguments...);
    return browser().answer;
}

NPError getUrl(NPP instance, const char* url, const char* target) {
    browser().note("geturl", instance, url, target);
    return browser().request({instance, url, target, nullptr, false});
}

NPError getUrlNotify(NPP instance, const char* url, const char* target, void* notifyData) {
    browser().note("geturlnotify", instance, url, target, notifyData);
    return browser().request({instance, url, target, notifyData, true});
}

void setStreamEntries(NPNetscapeFuncs& table) {
    table.geturl = getUrl;
    table.geturlnotify = getUrlNotify;
    table.posturl = [](NPP instance, const char* url, const char* target, uint32 len,
                       const char* buf, NPBool file) {
        return noteAndAnswer("posturl", instance, url, target, len, buf, file);
    };
    table.posturlnotify = [](NPP instance, const char* url, const char* target, uint32 len,
                             const char* buf, NPBool file, void* notifyData) {
        return noteAndAnswer("posturlnotify", instance, url, target, len, buf, file, notifyData);
    };
    table.requestread = [](NPStream* stream, NPByteRange* ranges) {
        return noteAndAnswer("requestread", stream, ranges);
    };
    table.newstream = [](NPP instance, NPMIMEType type, const char* target, NPStream** stream) {
        return noteAndAnswer("newstream", instance, type, target, stream);
    };
    table.write = [](NPP instance, NPStream* stream, int32 len, void* buffer) {
        return int32{noteAndAnswer("write", instance, stream, len, buffer)};
    };
    table.destroystream = [](NPP instance, NPStream* stream, NPReason reason) {
        return noteAndAnswer("destroystream", instance, stream, reason);
    };
}

void setServiceEntries(NPNetscapeFuncs& table) {
    table.status = [](NPP instance, const char* message) {
        browser().note("status", instance, message);
    };
    table.uagent = [](NPP instance) {
        browser().note("uagent", instance);
        return browser().userAgent;
    };
    table.memalloc = [](uint32 size) {
        browser().note("memalloc", size);
        return browser().allocate(size);
    };
    table.memfree = [](void* memory) {
        browser().note("memfree", memory);
        browser().release(memory);
    };
    table.memflush = [](uint32 size) {
        browser().note("memflush", size);
        return size / 2;
    };
    table.reloadplugins = [](NPBool pages) { browser().note("reloadplugins", pages); };
    table.getvalue = [](NPP instance, NPNVariable variable, void* value) {
        return noteAndAnswer("getvalue", instance, static_cast<int>(variable), value);
    };
    table.setvalue = [](NPP instance, NPPVariable variable, void* value) {
        return noteAndAnswer("setvalue", instance, static_cast<int>(variable), value);
    };
    table.invalidaterect = [](NPP instance, NPRect* rect) {
        browser().note("invalidaterect", instance, rect);
    };
    table.invalidateregion = [](NPP instance, NPRegion region) {
        browser().note("invalidateregion", instance, region);
    };
    table.forceredraw = [](NPP instance) { browser().note("forceredraw", instance); };
}

NPObject* createObject(NPP instance, NPClass* objectClass) {
    browser().note("createobject", instance, objectClass);
    if (!browser().createsObjects) return nullptr;
    NPObject* object = objectClass->allocate(instance, objectClass);
    if (object == nullptr) return nullptr;
    *object = {objectClass, 1};
    browser().remember(object);
    return object;
}

void releaseObject(NPObject* object) {
    browser().note("releaseobject", object);
    if (object == nullptr || --object->referenceCount > 0) return;
    browser().forget(object);
    object->_class->deallocate(object);
}

void setObjectEntries(NPNetscapeFuncs& table) {
    table.createobject = createObject;
    table.releaseobject = releaseObject;
    table.retainobject = [](NPObject* object) {
        browser().note("retainobject", object);
        if (object != nullptr) ++object->referenceCount;
        return object;
    };
    table.utf8fromidentifier = [](NPIdentifier identifier) -> NPUTF8* {
        const char* name = static_cast<const char*>(identifier);
        browser().note("utf8fromidentifier", name);
        if (!browser().convertsIdentifiers) return nullptr;
        return browser().convertName(name);
    };
}

// An entry that the plug-in has no business with: a call shows in the account.
template <typename Result, typename... Parameters>
void setUnused(Result (*&entry)(Parameters...)) {
    entry = [](Parameters...) -> Result {
        browser().note("unused entry");
        return Result();
    };
}

void setUnusedEntries(NPNetscapeFuncs& table) {
    setUnused(table.getJavaEnv);
    setUnused(table.getJavaPeer);
    setUnused(table.getstringidentifier);
    setUnused(table.getstringidentifiers);
    setUnused(table.getintidentifier);
    setUnused(table.identifierisstring);
    setUnused(table.intfromidentifier);
    setUnused(table.invoke);
    setUnused(table.invokeDefault);
    setUnused(table.evaluate);
    setUnused(table.getproperty);
    setUnused(table.setproperty);
    setUnused(table.removeproperty);
    setUnused(table.hasproperty);
    setUnused(table.hasmethod);
    setUnused(table.releasevariantvalue);
    setUnused(table.setexception);
}

constexpr std::size_t kFirstEntry = offsetof(NPNetscapeFuncs, geturl);
static_assert(std::size(kBrowserEntryNames) ==
              (sizeof(NPNetscapeFuncs) - kFirstEntry) / sizeof(void*));

}  // namespace

void fillBrowserTable(NPNetscapeFuncs& table) {
    table.size = sizeof table;
    table.version = 26;
    setStreamEntries(table);
    setServiceEntries(table);
    setObjectEntries(table);
    setUnusedEntries(table);
}

void fillWithSentinels(NPNetscapeFuncs& table) {
    auto* bytes = reinterpret_cast<char*>(&table);
    for (std::size_t i = 0; i < std::size(kBrowserEntryNames); ++i) {
        const std::uintptr_t sentinel = 0x1000 + i;
        std::memcpy(bytes + kFirstEntry + i * sizeof(void*), &sentinel, sizeof sentinel);
    }
}

void* browserEntryAt(const NPNetscapeFuncs& table, std::size_t index) {
    void* entry = nullptr;
    const auto* bytes = reinterpret_cast<const char*>(&table);
    std::memcpy(&entry, bytes + kFirstEntry + index * sizeof(void*), sizeof entry);
    return entry;
}
