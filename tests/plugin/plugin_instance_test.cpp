#include "plugin_instance.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "notify_data.h"
#include "plugin_test.h"

// The instance's functions and the notify records, called directly: what no browser reaches
// through the entry points.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

streamData* const kNotifyRecords[] = {g_h_js, g_s_js, g_nevo_http};

class InstanceFunctions : public PluginTest {
  protected:
    nsPluginInstance* create() {
        tagPluginCreateData createData = {};
        createData.instance = &handle;
        nsPluginInstance* record = NS_NewPluginInstance(&createData);
        log.clear();
        browser.calls.clear();
        return record;
    }

    NPP_t handle{};
    NPWindow window{};
};

// Creation and destruction.

TEST_F(InstanceFunctions, CreationNeedsItsData) {
    EXPECT_EQ(NS_NewPluginInstance(nullptr), nullptr);
    EXPECT_EQ(log.linesStarting("[PluginOpenLog]").size(), 5U);
    EXPECT_THAT(log.linesStarting("[NS_NewPluginInstance]"),
                ElementsAre("[NS_NewPluginInstance] ERROR! Incorrect input arguments. "
                            "nsPluginCreateData cannot be NULL\n"));
    EXPECT_THAT(browser.calls, IsEmpty());
}

TEST_F(InstanceFunctions, TheRecordsFieldsStandInTheirOrder) {
    nsPluginInstance* record = create();
    ASSERT_NE(record, nullptr);
    const std::vector<const void*> fields = {&record->window,          &record->npp,
                                             &record->initialized,     &record->data,
                                             &record->urlBuffer,       &record->doNotTerminate,
                                             &record->probeVpn,        &record->md5,
                                             &record->hostRootUrl,     &record->signature,
                                             &record->nevoUrl,         &record->nevoSize,
                                             &record->scriptableObject};
    EXPECT_EQ(fields.front(), record);
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
    NS_DestroyPluginInstance(record);
}

TEST_F(InstanceFunctions, ARecordWithoutAStringCanBeDestroyed) {
    for (const auto string :
         {&nsPluginInstance::data, &nsPluginInstance::urlBuffer, &nsPluginInstance::hostRootUrl,
          &nsPluginInstance::signature, &nsPluginInstance::nevoUrl, &nsPluginInstance::nevoSize}) {
        nsPluginInstance* record = create();
        ASSERT_NE(record, nullptr);
        delete (record->*string);
        record->*string = nullptr;
        NS_DestroyPluginInstance(record);
        EXPECT_EQ(log.events().back(), "<Close()>");
    }
}

TEST_F(InstanceFunctions, PasswordAndMethodAreNotKeptForTheProcess) {
    char name[] = "_userpassword";
    char method[] = "_installmethod";
    char value[] = "s3cret";
    char* names[] = {name, method};
    char* values[] = {value, value};
    tagPluginCreateData createData = {};
    createData.argc = 2;
    createData.argn = names;
    createData.argv = values;
    nsPluginInstance* record = NS_NewPluginInstance(&createData);
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(g_password, "");
    EXPECT_STREQ(g_installationMethod, "");
    NS_DestroyPluginInstance(record);
}

// Notify records.

TEST_F(InstanceFunctions, CreationInitialisesTheNotifyRecordsAgain) {
    FILE* file = std::fopen("/dev/null", "r");
    for (streamData* notify : kNotifyRecords) {
        notify->type = 77;
        std::fill(std::begin(notify->reserved), std::end(notify->reserved), 77);
        notify->text = "left over";
        notify->file = file;
    }
    nsPluginInstance* record = create();
    ASSERT_NE(record, nullptr);
    int type = 1;
    for (const streamData* notify : kNotifyRecords) {
        EXPECT_EQ(notify->type, type++);
        EXPECT_THAT(notify->reserved, testing::Each(0));
        EXPECT_STREQ(notify->text, "");
        EXPECT_EQ(notify->file, nullptr);
    }
    EXPECT_EQ(std::fclose(file), 0);  // it was forgotten, not closed
    NS_DestroyPluginInstance(record);
}

TEST_F(InstanceFunctions, DestructionEmptiesTheNotifyRecordsAndKeepsTheirTypes) {
    nsPluginInstance* record = create();
    ASSERT_NE(record, nullptr);
    std::vector<int> descriptors;
    for (streamData* notify : kNotifyRecords) {
        notify->text = "left over";
        notify->file = std::fopen("/dev/null", "r");
        descriptors.push_back(fileno(notify->file));
    }
    NS_DestroyPluginInstance(record);
    int type = 1;
    for (const streamData* notify : kNotifyRecords) {
        EXPECT_EQ(notify->type, type++);
        EXPECT_STREQ(notify->text, "");
        EXPECT_EQ(notify->file, nullptr);
    }
    for (const int descriptor : descriptors) {
        EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
        EXPECT_EQ(errno, EBADF);
    }
}

// Windows.

TEST_F(InstanceFunctions, InitNotesTheWindow) {
    nsPluginInstance record{};
    EXPECT_TRUE(PluginInstance_init(&record, &window));
    EXPECT_EQ(record.window, &window);
    EXPECT_TRUE(record.initialized);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_init]\n"));
}

TEST_F(InstanceFunctions, InitNeedsRecordAndWindow) {
    nsPluginInstance record{};
    EXPECT_FALSE(PluginInstance_init(&record, nullptr));
    EXPECT_FALSE(record.initialized);
    EXPECT_FALSE(PluginInstance_init(nullptr, &window));
    EXPECT_FALSE(PluginInstance_init(nullptr, nullptr));
    const char* error =
        "[PluginInstance_init] ERROR! Invalid input arguments, "
        "nsPluginInstance or NPWindow cannot be NULL\n";
    const char* trace = "[PluginInstance_init]\n";
    EXPECT_THAT(log.events(), ElementsAre(trace, error, trace, error, trace, error));
}

TEST_F(InstanceFunctions, ShutForgetsTheWindow) {
    nsPluginInstance record{};
    PluginInstance_init(&record, &window);
    log.clear();
    PluginInstance_shut(&record);
    EXPECT_EQ(record.window, nullptr);
    EXPECT_FALSE(record.initialized);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_shut]\n"));
}

TEST_F(InstanceFunctions, IsInitializedSaysWhetherAWindowWasNoted) {
    nsPluginInstance record{};
    EXPECT_FALSE(PluginInstance_isInitialized(&record));
    record.initialized = true;
    EXPECT_TRUE(PluginInstance_isInitialized(&record));
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_isInitialized]\n",
                                          "[PluginInstance_isInitialized] Initialized=0\n",
                                          "[PluginInstance_isInitialized]\n",
                                          "[PluginInstance_isInitialized] Initialized=1\n"));
}

TEST_F(InstanceFunctions, IsInitializedNeedsARecord) {
    EXPECT_FALSE(PluginInstance_isInitialized(nullptr));
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_isInitialized]\n",
                                          "[PluginInstance_isInitialized] ERROR! Invalid input "
                                          "arguments, nsPluginInstance cannot be NULL\n"));
}

TEST_F(InstanceFunctions, SetWindowNotesAnyWindowSilently) {
    nsPluginInstance record{};
    EXPECT_EQ(PluginInstance_SetWindow(&record, &window), 0);
    EXPECT_EQ(record.window, &window);
    EXPECT_EQ(PluginInstance_SetWindow(&record, nullptr), 0);
    EXPECT_EQ(record.window, nullptr);
    EXPECT_EQ(PluginInstance_SetWindow(nullptr, &window), 0);
    EXPECT_FALSE(record.initialized);
    EXPECT_THAT(log.events(), IsEmpty());
}

TEST_F(InstanceFunctions, TheVersionIsTheBrowsersUserAgent) {
    nsPluginInstance record{};
    record.npp = &handle;
    EXPECT_STREQ(PluginInstance_getVersion(&record), "Scripted/1.0");
    EXPECT_THAT(browser.calls, ElementsAre(callText("uagent", &handle)));
    EXPECT_STREQ(PluginInstance_getVersion(nullptr), "");
    EXPECT_THAT(browser.calls, ElementsAre(callText("uagent", &handle)));
    EXPECT_THAT(log.events(),
                ElementsAre("[PluginInstance_getVersion]\n", "[PluginInstance_getVersion]\n"));
}

}  // namespace
