#include "page_parameters.h"

#include <cstring>

#include "plugin_log.h"

namespace {

struct Target {
    nsPluginInstance& record;
    PageParameters& parameters;
};

// What a name that contains a marker means. The order decides for names with several markers.
struct MarkerRule {
    const char* marker;
    void (*apply)(const Target& target, const char* value);
};

constexpr MarkerRule kMarkerRules[] = {
    {"_userpassword",
     [](const Target& to, const char* value) {
         PluginWriteLog(5, "[NS_NewPluginInstance] _userpassword='%s'\n", "**********");
         to.parameters.password = value;
     }},
    {"_installmethod",
     [](const Target& to, const char* value) {
         PluginWriteLog(5, "[NS_NewPluginInstance] _installmethod='%s'\n", value);
         to.parameters.installMethod = value;
     }},
    {"_installvpn", [](const Target& to, const char*) { to.parameters.install = 1; }},
    {"_probevpn", [](const Target& to, const char*) { to.record.probeVpn = 1; }},
    {"last_param", [](const Target& to, const char*) { to.parameters.lastParam = 1; }},
    {"hostrooturl", [](const Target& to, const char* value) { *to.record.hostRootUrl = value; }},
    {"signature", [](const Target& to, const char* value) { *to.record.signature = value; }},
    {"nevourl", [](const Target& to, const char* value) { *to.record.nevoUrl = value; }},
    {"nevosize", [](const Target& to, const char* value) { *to.record.nevoSize = value; }},
};

const MarkerRule* ruleFor(const char* name) {
    for (const MarkerRule& rule : kMarkerRules) {
        if (strstr(name, rule.marker) != nullptr) return &rule;
    }
    return nullptr;
}

const char* textAt(char* const* texts, int index) {
    return texts != nullptr && texts[index] != nullptr ? texts[index] : "";
}

// Room for every name and value, so that a page with thousands of parameters costs one block.
int launchTextRoom(const tagPluginCreateData& createData) {
    constexpr size_t kMost = 64 << 20;
    size_t room = 64;
    for (int i = 0; i < createData.argc && room < kMost; ++i) {
        room += strlen(textAt(createData.argn, i)) + strlen(textAt(createData.argv, i)) + 2;
    }
    return static_cast<int>(room < kMost ? room : kMost);
}

}  // namespace

void readPageParameters(const tagPluginCreateData& createData, nsPluginInstance* record,
                        PageParameters& parameters) {
    const Target target = {*record, parameters};
    parameters.launchText.GetBuffer(launchTextRoom(createData));
    for (int i = 0; i < createData.argc; ++i) {
        const char* name = textAt(createData.argn, i);
        const char* value = textAt(createData.argv, i);
        if (const MarkerRule* rule = ruleFor(name)) {
            rule->apply(target, value);
            continue;
        }
        parameters.launchText += name;
        parameters.launchText += '=';
        parameters.launchText += value;
        parameters.launchText += '&';
    }
}
