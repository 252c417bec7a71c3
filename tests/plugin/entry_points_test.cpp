#include <cstring>
#include <utility>

#include "plugin_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// NP_GetEntryPoints.

using EntryPoints = UninitializedPluginTest;

TEST_F(EntryPoints, RefuseANullTable) {
    EXPECT_EQ(module->getEntryPoints(nullptr), 3);
    EXPECT_THAT(log.events(), ElementsAre("[NP_GetEntryPoints]\n",
                                          "[NP_GetEntryPoints] bad param: pluginFuncs == NULL\n"));
}

TEST_F(EntryPoints, SayVersion11AndTheSizeOfAPointer) {
    EXPECT_EQ(module->getEntryPoints(&plugin), 0);
    EXPECT_EQ(plugin.version, 11);
    EXPECT_EQ(plugin.size, 8);
    EXPECT_THAT(log.events(), ElementsAre("[NP_GetEntryPoints]\n"));
}

TEST_F(EntryPoints, AreThirteenDifferentFunctions) {
    EXPECT_EQ(module->getEntryPoints(&plugin), 0);
    const std::set<void*> entries = {
        reinterpret_cast<void*>(plugin.newp),          reinterpret_cast<void*>(plugin.destroy),
        reinterpret_cast<void*>(plugin.setwindow),     reinterpret_cast<void*>(plugin.newstream),
        reinterpret_cast<void*>(plugin.destroystream), reinterpret_cast<void*>(plugin.asfile),
        reinterpret_cast<void*>(plugin.writeready),    reinterpret_cast<void*>(plugin.write),
        reinterpret_cast<void*>(plugin.print),         reinterpret_cast<void*>(plugin.event),
        reinterpret_cast<void*>(plugin.urlnotify),     reinterpret_cast<void*>(plugin.getvalue),
        reinterpret_cast<void*>(plugin.setvalue)};
    EXPECT_EQ(entries.size(), 13U);
    EXPECT_EQ(entries.count(nullptr), 0U);
}

TEST_F(EntryPoints, LeaveJavaAndAllNewerEntriesAsTheBrowserGaveThem) {
    std::memset(&plugin, 0x5A, sizeof plugin);
    EXPECT_EQ(module->getEntryPoints(&plugin), 0);
    std::string canary(sizeof(NPPluginFuncs), '\x5A');
    EXPECT_EQ(std::memcmp(&plugin.javaClass, canary.data(), sizeof(void*)), 0);
    constexpr std::size_t kFirstNewer = offsetof(NPPluginFuncs, gotfocus);
    EXPECT_EQ(std::memcmp(reinterpret_cast<char*>(&plugin) + kFirstNewer, canary.data(),
                          sizeof plugin - kFirstNewer),
              0);
}

// Handles without an instance.

struct Answers {
    NPError destroy;
    NPError other;
};

class NoInstance : public PluginTest {
  protected:
    // Calls every entry but NPP_New with `handle` and checks its fixed answer.
    void expectAnswers(NPP handle, const Answers& expected) {
        char type[] = "text/plain";
        char bytes[] = "abc";
        NPStream stream{};
        NPWindow window{};
        uint16 mode = 77;
        void* value = &mode;
        NPSavedData* saved = nullptr;
        EXPECT_EQ(plugin.destroy(handle, &saved), expected.destroy);
        EXPECT_EQ(plugin.setwindow(handle, &window), expected.other);
        EXPECT_EQ(plugin.setwindow(handle, nullptr), expected.other);
        EXPECT_EQ(plugin.newstream(handle, type, &stream, 0, &mode), expected.other);
        EXPECT_EQ(plugin.writeready(handle, &stream), 268435455);
        for (const int32 length : {3, 0, -1, 1 << 30})
            EXPECT_EQ(plugin.write(handle, &stream, 0, length, bytes), length);
        EXPECT_EQ(plugin.destroystream(handle, &stream, 0), expected.other);
        plugin.asfile(handle, &stream, "/tmp/file");
        plugin.print(handle, nullptr);
        plugin.urlnotify(handle, "http://127.0.0.1:44444/vpn.php", 0, &stream);
        EXPECT_EQ(plugin.getvalue(handle, NPPVpluginNameString, &value), expected.other);
        EXPECT_EQ(plugin.setvalue(handle, NPNVariable{}, &value), expected.other);
        EXPECT_EQ(plugin.event(handle, nullptr), 0);
        EXPECT_EQ(mode, 77);
        EXPECT_EQ(value, &mode);
        EXPECT_THAT(browser.calls, IsEmpty());
        EXPECT_THAT(log.events(), IsEmpty());
    }
};

TEST_F(NoInstance, ANullHandleIsAnInvalidInstance) { expectAnswers(nullptr, {2, 2}); }

TEST_F(NoInstance, AHandleWithoutARecordIsAGenericErrorExceptForDestroy) {
    NPP_t handle{};
    expectAnswers(&handle, {0, 1});
}

TEST_F(NoInstance, NewNeedsAHandle) {
    char type[] = "application/x-zerva-sslvpn";
    EXPECT_EQ(plugin.newp(type, nullptr, 1, 0, nullptr, nullptr, nullptr), 2);
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_THAT(log.events(), IsEmpty());
}

// NPP_New and NPP_Destroy.

using Instance = PluginTest;

TEST_F(Instance, IsAnnouncedWindowlessWithCoreGraphicsAndCocoa) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    NPObject* object = page.record().scriptableObject;
    ASSERT_NE(object, nullptr);
    const auto setvalue = [&](int variable, std::intptr_t value) {
        return callText("setvalue", page.handle(), variable, reinterpret_cast<void*>(value));
    };
    EXPECT_THAT(
        browser.calls,
        ElementsAre(callText("uagent", page.handle()), setvalue(3, 0), setvalue(1000, 1),
                    setvalue(1001, 1), callText("createobject", page.handle(), object->_class),
                    callText("memalloc", 16), callText("retainobject", object)));
    EXPECT_EQ(page.record().npp, page.handle());
    EXPECT_EQ(object->referenceCount, 2U);
}

TEST_F(Instance, IsOutOfReachUntilItIsComplete) {
    static void* recordAtCreation = nullptr;
    browser.table.createobject = [](NPP handle, NPClass*) -> NPObject* {
        recordAtCreation = handle->pdata;
        return nullptr;
    };
    ASSERT_EQ(module->initialize(&browser.table), 0);
    recordAtCreation = this;
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(recordAtCreation, nullptr);
}

TEST_F(Instance, LivesOnWhenTheBrowserRefusesItsModels) {
    browser.answer = 1;
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(browser.count("setvalue"), 3);
}

TEST_F(Instance, LivesWithoutAScriptableObject) {
    browser.createsObjects = false;
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(page.record().scriptableObject, nullptr);
    EXPECT_EQ(browser.count("retainobject"), 0);

    void* value = &page;
    EXPECT_EQ(plugin.getvalue(page.handle(), NPPVpluginScriptableNPObject, &value), 0);
    EXPECT_EQ(value, &page);
    EXPECT_FALSE(log.contains("Plugin is scriptable"));

    EXPECT_EQ(page.destroy(), 0);
    EXPECT_EQ(browser.calls.back(), callText("releaseobject", static_cast<NPObject*>(nullptr)));
}

TEST_F(Instance, LivesWithoutAScriptableObjectWhenTheBrowserHasNoMemory) {
    browser.hasMemory = false;
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(page.record().scriptableObject, nullptr);
    EXPECT_THAT(log.linesStarting("[scriptableAllocate]"),
                ElementsAre("[scriptableAllocate] \n",
                            "[scriptableAllocate] ERROR! Cannot allocate memory\n"));
}

TEST_F(Instance, DestroyReleasesTheObjectOnceAndClosesTheLog) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    NPObject* object = page.record().scriptableObject;
    browser.calls.clear();
    log.clear();
    NPSavedData* saved = nullptr;
    EXPECT_EQ(plugin.destroy(page.handle(), &saved), 0);
    EXPECT_EQ(saved, nullptr);
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(object->referenceCount, 1U);
    EXPECT_THAT(browser.calls, ElementsAre(callText("releaseobject", object)));
    EXPECT_THAT(
        log.events(),
        ElementsAre("[PluginInstance_shut]\n", "[NS_DestroyPluginInstance] doNotTerminate = 1\n",
                    "[destroyNotifyData] destroying notify data of type = 1\n",
                    "[destroyNotifyData] Done destroying notify data of type = 1\n",
                    "[destroyNotifyData] destroying notify data of type = 2\n",
                    "[destroyNotifyData] Done destroying notify data of type = 2\n",
                    "[destroyNotifyData] destroying notify data of type = 3\n",
                    "[destroyNotifyData] Done destroying notify data of type = 3\n", "<Close()>"));
}

TEST_F(Instance, DestroyReleasesTheObjectBeforeItTakesTheWindow) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    page.record().scriptableObject->referenceCount = 1;
    log.clear();
    EXPECT_EQ(page.destroy(), 0);
    EXPECT_EQ(log.events().at(0), "[scriptableDeallocate]\n");
    EXPECT_EQ(log.events().at(1), "[PluginInstance_shut]\n");
}

TEST_F(Instance, MayBeDestroyedWhileItIsDestroyed) {
    static NPError (*destroy)(NPP, NPSavedData**) = nullptr;
    static NPP handle = nullptr;
    static NPError answer = -1;
    browser.table.releaseobject = [](NPObject*) {
        if (std::exchange(answer, 0) == -1) answer = destroy(handle, nullptr);
    };
    ASSERT_EQ(module->initialize(&browser.table), 0);
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    destroy = plugin.destroy;
    handle = page.handle();
    EXPECT_EQ(page.destroy(), 0);
    EXPECT_EQ(answer, 0);
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(log.linesStarting("[PluginInstance_shut]").size(), 1U);
}

TEST_F(Instance, MayBeDestroyedTwice) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    EXPECT_EQ(page.destroy(), 0);
    browser.calls.clear();
    EXPECT_EQ(page.destroy(), 0);
    EXPECT_THAT(browser.calls, IsEmpty());
}

TEST_F(Instance, EachRequestForTheObjectRetainsItOnceMore) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    NPObject* object = page.record().scriptableObject;
    for (uint32 k = 1; k <= 5; ++k) {
        void* value = nullptr;
        EXPECT_EQ(plugin.getvalue(page.handle(), NPPVpluginScriptableNPObject, &value), 0);
        EXPECT_EQ(value, object);
        EXPECT_EQ(object->referenceCount, 2 + k);
    }
    page.destroy();
    EXPECT_EQ(object->referenceCount, 6U);
}

TEST_F(Instance, TenThousandLeaveNothingBehind) {
    for (int i = 0; i < 10000; ++i) {
        Embedding page(plugin);
        ASSERT_EQ(page.create(), 0);
        void* value = nullptr;
        for (int k = 0; k < i % 4; ++k)
            plugin.getvalue(page.handle(), NPPVpluginScriptableNPObject, &value);
        NPObject* object = page.record().scriptableObject;
        ASSERT_EQ(object->referenceCount, static_cast<uint32>(2 + i % 4));
        page.destroy();
        ASSERT_EQ(object->referenceCount, static_cast<uint32>(1 + i % 4));
        browser.dropObjects();
        browser.calls.clear();
        log.clear();
    }
    EXPECT_EQ(browser.liveMemory(), 0U);
}

// Values.

TEST_F(Instance, AnswersItsName) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    const char* value = nullptr;
    EXPECT_EQ(plugin.getvalue(page.handle(), NPPVpluginNameString, &value), 0);
    EXPECT_STREQ(value, "Zerva Lanway plugin");
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_GetValue]\n"));
}

TEST_F(Instance, AnswersItsDescription) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    const char* value = nullptr;
    EXPECT_EQ(plugin.getvalue(page.handle(), NPPVpluginDescriptionString, &value), 0);
    EXPECT_STREQ(value, "Zerva Lanway plugin, Ver. ZERVA_VERSION");
}

TEST_F(Instance, AnswersItsScriptableObject) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    void* value = nullptr;
    EXPECT_EQ(plugin.getvalue(page.handle(), NPPVpluginScriptableNPObject, &value), 0);
    EXPECT_EQ(value, page.record().scriptableObject);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_GetValue]\n",
                                          "[PluginInstance_GetValue] Plugin is scriptable\n"));
}

class UnknownVariable : public PluginTest, public testing::WithParamInterface<int> {};

TEST_P(UnknownVariable, IsAnInvalidParameter) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    void* value = &page;
    EXPECT_EQ(plugin.getvalue(page.handle(), static_cast<NPPVariable>(GetParam()), &value), 9);
    EXPECT_EQ(value, &page);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_GetValue]\n",
                                          "[PluginInstance_GetValue] bad param: NPPVariable='" +
                                              std::to_string(GetParam()) + "' not implemented\n"));
}

INSTANTIATE_TEST_SUITE_P(Variables, UnknownVariable,
                         testing::Values(-1, 0, 3, 14, 16, 18, 1000, 1001, 1003, 71879),
                         [](const auto& row) { return "Variable" + std::to_string(row.index); });

TEST_F(Instance, AnswersNothingWithoutAPlaceForTheAnswer) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    for (const auto variable :
         {NPPVpluginNameString, NPPVpluginDescriptionString, NPPVpluginScriptableNPObject})
        EXPECT_EQ(plugin.getvalue(page.handle(), variable, nullptr), 9);
    EXPECT_EQ(page.record().scriptableObject->referenceCount, 2U);
}

TEST_F(Instance, TakesEveryValueAndChangesNothing) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    browser.calls.clear();
    int value = 5;
    EXPECT_EQ(plugin.setvalue(page.handle(), NPNVariable{}, &value), 0);
    EXPECT_EQ(plugin.setvalue(page.handle(), NPNVariable{4000}, nullptr), 0);
    EXPECT_EQ(value, 5);
    EXPECT_THAT(log.events(), IsEmpty());
    EXPECT_THAT(browser.calls, IsEmpty());
}

TEST_F(Instance, HandlesNoEventAndPrintsNothing) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    log.clear();
    NPStream stream{};
    int event = 1;
    EXPECT_EQ(plugin.event(page.handle(), &event), 0);
    EXPECT_EQ(plugin.event(page.handle(), nullptr), 0);
    plugin.print(page.handle(), nullptr);
    plugin.asfile(page.handle(), &stream, "/tmp/file");
    EXPECT_THAT(log.events(), IsEmpty());
}

// Windows.

TEST_F(Instance, NeedsAWindowRecord) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    EXPECT_EQ(plugin.setwindow(page.handle(), nullptr), 1);
    EXPECT_EQ(page.record().window, nullptr);
}

TEST_F(Instance, IsInitializedByItsFirstRealWindowOnly) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    EXPECT_FALSE(page.record().initialized);
    log.clear();

    NPWindow none{};
    EXPECT_EQ(plugin.setwindow(page.handle(), &none), 0);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_isInitialized]\n",
                                          "[PluginInstance_isInitialized] Initialized=0\n"));
    EXPECT_FALSE(page.record().initialized);
    EXPECT_EQ(page.record().window, &none);
    EXPECT_THAT(log.linesStarting("[PluginInstance_init]"), IsEmpty());

    NPWindow real{};
    real.window = &real;
    EXPECT_EQ(plugin.setwindow(page.handle(), &real), 0);
    EXPECT_TRUE(page.record().initialized);
    EXPECT_EQ(page.record().window, &real);
    EXPECT_THAT(log.linesStarting("[PluginInstance_init]"), ElementsAre("[PluginInstance_init]\n"));

    NPWindow second{};
    second.window = &second;
    EXPECT_EQ(plugin.setwindow(page.handle(), &second), 0);
    EXPECT_EQ(plugin.setwindow(page.handle(), &none), 0);
    EXPECT_TRUE(page.record().initialized);
    EXPECT_EQ(page.record().window, &none);
    EXPECT_THAT(log.linesStarting("[PluginInstance_init]"), ElementsAre("[PluginInstance_init]\n"));
}

}  // namespace
