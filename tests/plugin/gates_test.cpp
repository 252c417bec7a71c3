#include <vector>

#include "np_entry.h"
#include "npn_gate.h"
#include "plugin_test.h"

// The wrappers around the browser's services, each against browsers of every age.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Arguments that no wrapper may look into, and all different.
NPP_t handle{};
NPStream stream{};
NPByteRange range{};
NPRect rectangle{};
NPStream* made = nullptr;
int value = 0;
char type[] = "text/type";
char bytes[] = "bytes";
constexpr char kUrl[] = "http://here/";
constexpr char kTarget[] = "_top";
void* const kNotify = &value;
constexpr NPNVariable kAsked{12};
constexpr auto kSet = static_cast<NPPVariable>(3);

struct Wrapper {
    const char* name;      // of the browser's entry
    int gate;              // the first minor version whose browser is called
    int belowGate;         // the answer for an older browser
    int missing;           // the answer when the browser has no such entry
    int (*call)();         // calls it; the answer as a number
    std::string expected;  // how the browser sees the call
};

const Wrapper kWrappers[] = {
    {"geturl", 0, 0, 8, [] { return int{NPN_GetURL(&handle, kUrl, kTarget)}; },
     callText("geturl", &handle, kUrl, kTarget)},
    {"geturlnotify", 9, 8, 8, [] { return int{NPN_GetURLNotify(&handle, kUrl, kTarget, kNotify)}; },
     callText("geturlnotify", &handle, kUrl, kTarget, kNotify)},
    {"posturl", 0, 0, 8, [] { return int{NPN_PostURL(&handle, kUrl, kTarget, 5, bytes, 1)}; },
     callText("posturl", &handle, kUrl, kTarget, 5, static_cast<const char*>(bytes), 1)},
    {"posturlnotify", 9, 8, 8,
     [] { return int{NPN_PostURLNotify(&handle, kUrl, kTarget, 5, bytes, 1, kNotify)}; },
     callText("posturlnotify", &handle, kUrl, kTarget, 5, static_cast<const char*>(bytes), 1,
              kNotify)},
    {"requestread", 0, 0, 8, [] { return int{NPN_RequestRead(&stream, &range)}; },
     callText("requestread", &stream, &range)},
    {"newstream", 8, 8, 8, [] { return int{NPN_NewStream(&handle, type, kTarget, &made)}; },
     callText("newstream", &handle, static_cast<char*>(type), kTarget, &made)},
    {"write", 8, -1, -1, [] { return int{NPN_Write(&handle, &stream, 5, bytes)}; },
     callText("write", &handle, &stream, 5, static_cast<void*>(bytes))},
    {"destroystream", 8, 8, 8, [] { return int{NPN_DestroyStream(&handle, &stream, 2)}; },
     callText("destroystream", &handle, &stream, 2)},
    {"getvalue", 0, 0, 8, [] { return int{NPN_GetValue(&handle, kAsked, &value)}; },
     callText("getvalue", &handle, 12, static_cast<void*>(&value))},
    {"setvalue", 0, 0, 8, [] { return int{NPN_SetValue(&handle, kSet, &value)}; },
     callText("setvalue", &handle, 3, static_cast<void*>(&value))},
    {"status", 0, 0, 0, [] { return NPN_Status(&handle, "text"), 0; },
     callText("status", &handle, "text")},
    {"memflush", 0, 0, 0, [] { return static_cast<int>(NPN_MemFlush(84)); },
     callText("memflush", 84)},
    {"reloadplugins", 0, 0, 0, [] { return NPN_ReloadPlugins(1), 0; },
     callText("reloadplugins", 1)},
    {"invalidaterect", 0, 0, 0, [] { return NPN_InvalidateRect(&handle, &rectangle), 0; },
     callText("invalidaterect", &handle, &rectangle)},
    {"invalidateregion", 0, 0, 0, [] { return NPN_InvalidateRegion(&handle, kNotify), 0; },
     callText("invalidateregion", &handle, kNotify)},
    {"forceredraw", 0, 0, 0, [] { return NPN_ForceRedraw(&handle), 0; },
     callText("forceredraw", &handle)},
    {"memfree", 0, 0, 0, [] { return NPN_MemFree(nullptr), 0; },
     callText("memfree", static_cast<void*>(nullptr))},
    {"retainobject", 0, 0, 0, [] { return NPN_RetainObject(nullptr) != nullptr ? 1 : 0; },
     callText("retainobject", static_cast<NPObject*>(nullptr))},
    {"releaseobject", 0, 0, 0, [] { return NPN_ReleaseObject(nullptr), 0; },
     callText("releaseobject", static_cast<NPObject*>(nullptr))},
};

// What the browser's entry answers in these tests.
int browsersAnswer(const Wrapper& wrapper) {
    const std::string name = wrapper.name;
    if (name == "memflush") return 42;
    const bool answers = wrapper.missing != 0;
    return answers ? 6 : 0;
}

constexpr uint16 kVersions[] = {0, 7, 8, 9, 26, 255, 256 + 8, 256 + 9};

class Gate : public UninitializedPluginTest, public testing::WithParamInterface<Wrapper> {
  protected:
    // A browser of this age, met for the first time.
    void startWith(uint16 version) {
        NPNFuncs = {};
        browser.table.version = version;
        start();
        browser.calls.clear();
        log.clear();
    }
};

TEST_P(Gate, CallsTheBrowserUnchangedUnlessItIsTooOld) {
    const Wrapper& wrapper = GetParam();
    browser.answer = 6;
    browser.answerRequest = [](int) -> NPError { return 6; };
    for (const uint16 version : kVersions) {
        SCOPED_TRACE(version);
        startWith(version);
        const bool isYoungEnough = (version & 0xFF) >= wrapper.gate;
        EXPECT_EQ(wrapper.call(), isYoungEnough ? browsersAnswer(wrapper) : wrapper.belowGate);
        const std::vector<std::string> seen = {wrapper.expected};
        EXPECT_EQ(browser.calls, isYoungEnough ? seen : std::vector<std::string>{});
        EXPECT_THAT(log.events(), IsEmpty());
    }
}

TEST_P(Gate, AnswersForABrowserThatHasNoSuchEntry) {
    browser.table = {};
    browser.table.size = sizeof browser.table;
    for (const uint16 version : kVersions) {
        startWith(version);
        EXPECT_EQ(GetParam().call(), GetParam().missing) << version;
    }
}

INSTANTIATE_TEST_SUITE_P(Wrappers, Gate, testing::ValuesIn(kWrappers),
                         [](const auto& row) { return std::string(row.param.name); });

using Wrappers = PluginTest;

TEST_F(Wrappers, GiveTheBrowsersTextsMemoryAndObjects) {
    EXPECT_STREQ(NPN_UserAgent(&handle), "Scripted/1.0");
    void* memory = NPN_MemAlloc(33);
    EXPECT_NE(memory, nullptr);
    NPN_MemFree(memory);
    NPClass objectClass{};
    browser.createsObjects = false;
    EXPECT_EQ(NPN_CreateObject(&handle, &objectClass), nullptr);
    NPObject object{&objectClass, 7};
    EXPECT_EQ(NPN_RetainObject(&object), &object);
    NPN_ReleaseObject(&object);
    EXPECT_EQ(object.referenceCount, 7U);
    EXPECT_THAT(
        browser.calls,
        ElementsAre(callText("uagent", &handle), "memalloc(33)", callText("memfree", memory),
                    callText("createobject", &handle, &objectClass),
                    callText("retainobject", &object), callText("releaseobject", &object)));
}

TEST_F(Wrappers, GiveNothingForABrowserWithoutTextsMemoryAndObjects) {
    NPNFuncs = {};
    NPClass objectClass{};
    EXPECT_EQ(NPN_UserAgent(&handle), nullptr);
    EXPECT_EQ(NPN_MemAlloc(33), nullptr);
    EXPECT_EQ(NPN_CreateObject(&handle, &objectClass), nullptr);
}

struct Versions {
    uint16 version;
    int major;
    int minor;
};

class VersionNumbers : public UninitializedPluginTest,
                       public testing::WithParamInterface<Versions> {};

TEST_P(VersionNumbers, AreOursAndTheBrowsers) {
    browser.table.version = GetParam().version;
    start();
    int ours[2] = {-1, -1};
    int browsers[2] = {-1, -1};
    NPN_Version(&ours[0], &ours[1], &browsers[0], &browsers[1]);
    EXPECT_THAT(ours, ElementsAre(0, 24));
    EXPECT_THAT(browsers, ElementsAre(GetParam().major, GetParam().minor));
}

INSTANTIATE_TEST_SUITE_P(Versions, VersionNumbers,
                         testing::Values(Versions{0, 0, 0}, Versions{26, 0, 26},
                                         Versions{0x0109, 1, 9}, Versions{0xFFFE, 255, 254}));

// The hooks for hosts that build the plug-in in.

TEST_F(Wrappers, TheInitializeHookOpensTheLog) {
    EXPECT_EQ(NS_PluginInitialize(), 0);
    EXPECT_EQ(log.events().at(0), "<setParam(module_name, nevo_plugin)>");
    EXPECT_EQ(log.linesStarting("[PluginOpenLog]").size(), 5U);
    EXPECT_EQ(log.events().back(), "[NS_PluginInitialize]\n");
}

TEST_F(Wrappers, TheShutdownHookClosesTheLog) {
    NS_PluginShutdown();
    EXPECT_THAT(log.events(), ElementsAre("[NS_PluginShutdown]\n", "<Close()>"));
}

}  // namespace
