#include <cerrno>

#include "fault_points.h"
#include "notify_data.h"
#include "plugin_test.h"

// What a page and the log hear when there is no memory for an instance's record or its strings.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InstanceMemory : public PluginTest {
  protected:
    const std::string userAgent = "[NS_NewPluginInstance] User Agent:'Scripted/1.0'\n";
    const std::string size =
        "[NS_NewPluginInstance] Memory allocation: " + std::to_string(sizeof(nsPluginInstance)) +
        "\n";
    Embedding page{plugin};
};

TEST_F(InstanceMemory, MissingForTheRecordFailsTheInstance) {
    {
        const Fault fault("calloc", 1, ENOMEM, 0);
        EXPECT_EQ(page.create({{"_probevpn", ""}}), 5);
    }
    EXPECT_FALSE(page.isAlive());
    EXPECT_THAT(browser.requests, IsEmpty());
    EXPECT_THAT(log.linesStarting("[NS_NewPluginInstance]"),
                ElementsAre(userAgent, size,
                            "[NS_NewPluginInstance] ERROR! Cannot allocate memory for plugin "
                            "instance\n"));
}

class StringMemory : public InstanceMemory, public testing::WithParamInterface<int> {};

TEST_P(StringMemory, MissingForAnyOfTheSixFailsTheInstance) {
    g_nevo_http->type = 77;
    {
        const Fault fault("new(nothrow)", GetParam(), ENOMEM, 0);
        EXPECT_EQ(page.create({{"_probevpn", ""}}), 5);
    }
    EXPECT_FALSE(page.isAlive());
    EXPECT_THAT(browser.requests, IsEmpty());
    EXPECT_THAT(log.linesStarting("[NS_NewPluginInstance]"),
                ElementsAre(userAgent, size,
                            "[NS_NewPluginInstance] ERROR! cannot allocate memory for new "
                            "string\n",
                            "[NS_NewPluginInstance] Done\n"));
    // The notify records stay initialised, and nothing is stopped or closed.
    EXPECT_EQ(g_nevo_http->type, 3);
    EXPECT_FALSE(log.contains("[destroyNotifyData]"));
    EXPECT_FALSE(log.contains("<Close()>"));
}

INSTANTIATE_TEST_SUITE_P(Strings, StringMemory, testing::Range(1, 7),
                         testing::PrintToStringParamName());

}  // namespace
