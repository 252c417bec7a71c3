#include "direct_info.h"

#include <cerrno>
#include <cstring>

#include "nevo_service.h"
#include "plugin_log.h"
#include "service_socket.h"

namespace {

// The request goes out as a block of this size, zeros behind its text, and as much is read back.
constexpr size_t kBlockSize = 1000;

static_assert(sizeof nevo::kInfoRequest - 1 == 66);

// What follows the first blank line of an answer; nothing without one.
const char* bodyOf(const char* answer) {
    const char* blankLine = strstr(answer, nevo::kBlankLine);
    return blankLine != nullptr ? blankLine + strlen(nevo::kBlankLine) : "";
}

int giveUp(const char* call, UniqueFd& service) {
    PluginWriteLog(4, "[GetDataFromNevo] %s() failed=%s\n", call, strerror(errno));
    // A failed request leaves its socket open: kept so.
    service.release();
    return 0;
}

}  // namespace

int GetDataFromNevo(nsPluginInstance* record) {
    char block[kBlockSize + 1] = {};
    memcpy(block, nevo::kInfoRequest, sizeof nevo::kInfoRequest);
    PluginWriteLog(4, "[GetDataFromNevo]\n");

    UniqueFd service = openServiceSocket();
    if (!service) return giveUp("socket", service);
    if (!connectToService(service)) return giveUp("connect", service);
    if (writeToService(service, block, kBlockSize) <= 0) return giveUp("write", service);
    const ssize_t count = read(service.get(), block, kBlockSize);
    if (count <= 0) return giveUp("read", service);

    block[count] = '\0';
    PluginWriteLog(4, "[GetDataFromNevo] got reply: %s\n", block);
    *record->data = bodyOf(block);
    return 1;
}
