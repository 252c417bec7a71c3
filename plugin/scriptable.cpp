#include "scriptable.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "nevo_service.h"
#include "npn_gate.h"
#include "plugin_log.h"
#include "service_socket.h"

namespace {

constexpr char kInfoProperty[] = "info";

// All of the answer that is read; there is one read and no more.
constexpr size_t kAnswerSize = 511;

static_assert(sizeof nevo::kScriptInfoRequest == 93);

NPObject* scriptableAllocate(NPP /*instance*/, NPClass* /*objectClass*/) {
    PluginWriteLog(4, "[scriptableAllocate] \n");
    void* object = NPN_MemAlloc(sizeof(NPObject));
    if (object == nullptr) {
        PluginWriteLog(0, "[scriptableAllocate] ERROR! Cannot allocate memory\n");
    }
    return static_cast<NPObject*>(object);
}

void scriptableDeallocate(NPObject* object) {
    PluginWriteLog(4, "[scriptableDeallocate]\n");
    if (object != nullptr) NPN_MemFree(object);
}

bool scriptableHasMethod(NPObject* /*object*/, NPIdentifier /*name*/) {
    PluginWriteLog(4, "[scriptableHasMethod]\n");
    return false;
}

// The text of a property's name, made by the browser; null when it has none.
NPUTF8* textOf(NPIdentifier name) {
    return NPNFuncs.utf8fromidentifier != nullptr ? NPNFuncs.utf8fromidentifier(name) : nullptr;
}

bool isInfo(const NPUTF8* name) { return name != nullptr && strcmp(name, kInfoProperty) == 0; }

bool scriptableHasProperty(NPObject* /*object*/, NPIdentifier name) {
    PluginWriteLog(4, "[scriptableHasProperty] \n");
    NPUTF8* text = textOf(name);
    const bool known = isInfo(text);
    free(text);
    return known;
}

// Gives the page the body of an answer. The browser frees the text.
bool takeBody(const char* answer, NPVariant* result) {
    const char* blankLine = strstr(answer, nevo::kBlankLine);
    if (blankLine == nullptr) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Bad response from nevo\n");
        return false;
    }
    const char* body = blankLine + strlen(nevo::kBlankLine);
    const size_t length = strlen(body);
    // malloc and not the browser's allocator: kept so, the hosts' allocator is malloc.
    auto* text = static_cast<NPUTF8*>(malloc(length + 1));
    result->value.stringValue.UTF8Characters = text;
    if (text == nullptr) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Cannot allocate memory\n");
        return false;
    }
    memcpy(text, body, length + 1);
    result->value.stringValue.UTF8Length = static_cast<uint32>(length);
    result->type = NPVariantType_String;
    return true;
}

// Sends the request on a connected socket and takes the answer's body.
bool askService(const UniqueFd& service, NPVariant* result) {
    constexpr size_t kRequestSize = sizeof nevo::kScriptInfoRequest;
    if (writeToService(service, nevo::kScriptInfoRequest, kRequestSize) !=
        static_cast<ssize_t>(kRequestSize)) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Cannot send request to nevo\n");
        return false;
    }
    char answer[kAnswerSize + 1];
    const ssize_t count = read(service.get(), answer, kAnswerSize);
    if (count <= 0) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Cannot read response from nevo\n");
        return false;
    }
    answer[count] = '\0';
    return takeBody(answer, result);
}

// Asks the service for its state over a connection of its own.
bool fetchInfo(NPVariant* result) {
    const UniqueFd service = openServiceSocket();
    if (!service) {
        const int error = errno;
        PluginWriteLog(
            0, "[scriptableGetProperty] ERROR! Cannot create socket. errno=%d. Reason '%s'\n",
            error, strerror(error));
        return false;
    }
    const int on = 1;
    if (setsockopt(service.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Cannot disable Nagle algorithm '%s'\n",
                       strerror(errno));
    }
    if (!connectToService(service)) {
        PluginWriteLog(0, "[scriptableGetProperty] ERROR! Cannot connect to nevo\n");
        return false;
    }
    const bool answered = askService(service, result);
    shutdown(service.get(), SHUT_RDWR);
    return answered;
}

bool scriptableGetProperty(NPObject* /*object*/, NPIdentifier name, NPVariant* result) {
    PluginWriteLog(4, "[scriptableGetProperty] \n");
    bool answered = false;
    // The converted name is not released: kept so.
    if (isInfo(textOf(name))) {
        PluginWriteLog(4, "[scriptableGetProperty] Property name is 'info'\n");
        answered = fetchInfo(result);
    } else {
        PluginWriteLog(4, "[scriptableGetProperty] Property name is not 'info'\n");
    }
    if (answered) {
        PluginWriteLog(4, "[scriptableGetProperty] Return value '%s' \n",
                       result->value.stringValue.UTF8Characters);
    } else {
        result->type = NPVariantType_Bool;
        result->value.boolValue = false;
        PluginWriteLog(4, "[scriptableGetProperty] Return value 'false' \n");
    }
    // Failures reach the page as the value `false`, never as a script exception.
    return true;
}

}  // namespace

NPClass sNPClass = {
    .structVersion = NP_CLASS_STRUCT_VERSION,
    .allocate = scriptableAllocate,
    .deallocate = scriptableDeallocate,
    .invalidate = nullptr,
    .hasMethod = scriptableHasMethod,
    .invoke = nullptr,
    .invokeDefault = nullptr,
    .hasProperty = scriptableHasProperty,
    .getProperty = scriptableGetProperty,
    .setProperty = nullptr,
    .removeProperty = nullptr,
    .enumerate = nullptr,
    .construct = nullptr,
};
