#include <unistd.h>

#include <algorithm>

#include "plugin_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kWho[] = "[NS_NewPluginInstance]";

std::string browserPid() { return "browser_pid=" + std::to_string(getpid()) + "&"; }

class Parameters : public PluginTest {
  protected:
    // The text that would be handed to the service, as the log shows it.
    std::string launchText() const {
        const std::string start = "[NS_NewPluginInstance] vpnA:='";
        const std::vector<std::string> lines = log.linesStarting(start);
        if (lines.size() != 1) return std::to_string(lines.size()) + " lines";
        return lines[0].substr(start.size(), lines[0].size() - start.size() - 2);
    }

    bool logged(const std::string& line) const {
        const std::vector<std::string> lines = log.lines();
        return std::count(lines.begin(), lines.end(), line) == 1;
    }
};

TEST_F(Parameters, NoneAtAllAreLoggedAndNothingIsDone) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    const std::string size = std::to_string(sizeof(nsPluginInstance));
    EXPECT_THAT(
        log.linesStarting(kWho),
        ElementsAre("[NS_NewPluginInstance] User Agent:'Scripted/1.0'\n",
                    "[NS_NewPluginInstance] Memory allocation: " + size + "\n",
                    "[NS_NewPluginInstance] Parsing input arguments, count='0'\n",
                    "[NS_NewPluginInstance] 0. hosturl=, nevoURL=. nevosize=\n",
                    "[NS_NewPluginInstance] vpnA:='" + browserPid() + "'\n",
                    "[NS_NewPluginInstance] install='0' plugin->probeVpn='0' _last_param='0'\n",
                    "[NS_NewPluginInstance] nothing to do\n", "[NS_NewPluginInstance] Done\n"));
    EXPECT_EQ(log.lines().back(), "[scriptableAllocate] \n");
    EXPECT_THAT(browser.requests, IsEmpty());
}

TEST_F(Parameters, EachInstanceReopensTheLogWithItsBanner) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    EXPECT_EQ(log.events().at(0), "<setParam(module_name, nevo_plugin)>");
    EXPECT_EQ(log.events().at(1).rfind("<Open(", 0), 0U);
    EXPECT_EQ(log.linesStarting("[PluginOpenLog]").size(), 5U);
}

TEST_F(Parameters, FillANewRecordWithEmptyTextsAndNoWork) {
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    const nsPluginInstance& record = page.record();
    EXPECT_EQ(record.window, nullptr);
    EXPECT_EQ(record.npp, page.handle());
    EXPECT_FALSE(record.initialized);
    EXPECT_EQ(record.doNotTerminate, 1);
    EXPECT_EQ(record.probeVpn, 0);
    for (const CString* text : {record.data, record.urlBuffer, record.hostRootUrl, record.signature,
                                record.nevoUrl, record.nevoSize}) {
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(*text, "");
    }
}

TEST_F(Parameters, AreForwardedAsTheyAreInTheirOrder) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"a", "1"}, {"b", "x y"}}), 0);
    EXPECT_EQ(launchText(), "a=1&b=x y&" + browserPid());
}

TEST_F(Parameters, AreForwardedWithoutAnyEncoding) {
    Embedding page(plugin);
    const char* awkward = "%n %s ' \" \\ & = \n \xC3\xA9 #";
    ASSERT_EQ(page.create({{awkward, awkward}, {"", ""}}), 0);
    EXPECT_EQ(launchText(), std::string(awkward) + "=" + awkward + "&=&" + browserPid());
}

TEST_F(Parameters, OfThePageAreStoredAndNotForwarded) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"hostrooturl", "/root"},
                           {"signature", "abc"},
                           {"nevourl", "/n"},
                           {"nevosize", "12"}}),
              0);
    EXPECT_STREQ(*page.record().hostRootUrl, "/root");
    EXPECT_STREQ(*page.record().signature, "abc");
    EXPECT_STREQ(*page.record().nevoUrl, "/n");
    EXPECT_STREQ(*page.record().nevoSize, "12");
    EXPECT_EQ(launchText(), browserPid());
    EXPECT_TRUE(logged("[NS_NewPluginInstance] 4. hosturl=/root, nevoURL=/n. nevosize=12\n"));
}

TEST_F(Parameters, LaterOnesOverwriteEarlierOnes) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"hostrooturl", "first, and longer"}, {"x-hostrooturl-y", "last"}}), 0);
    EXPECT_STREQ(*page.record().hostRootUrl, "last");
}

TEST_F(Parameters, ThePasswordIsNeverShownNorForwarded) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"_userpassword", "s3cret"}, {"x_userpassword", "0ther"}}), 0);
    EXPECT_EQ(launchText(), browserPid());
    EXPECT_FALSE(log.contains("s3cret"));
    EXPECT_FALSE(log.contains("0ther"));
    EXPECT_THAT(log.linesStarting("[NS_NewPluginInstance] _userpassword"),
                ElementsAre("[NS_NewPluginInstance] _userpassword='**********'\n",
                            "[NS_NewPluginInstance] _userpassword='**********'\n"));
}

TEST_F(Parameters, TheInstallMethodIsOnlyLogged) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"_installmethod", "manual"}}), 0);
    EXPECT_EQ(launchText(), browserPid());
    EXPECT_TRUE(logged("[NS_NewPluginInstance] _installmethod='manual'\n"));
}

// Which rule a name falls under.

// What one parameter, named as given, with the value "V", does.
enum class Effect {
    kPassword,
    kMethod,
    kInstall,
    kProbe,
    kLast,
    kHostRoot,
    kSignature,
    kUrl,
    kSize,
    kForward
};

struct Marker {
    const char* name;
    Effect effect;
};

class MarkerInName : public Parameters, public testing::WithParamInterface<Marker> {};

TEST_P(MarkerInName, FirstRuleThatOccursInTheNameDecides) {
    // The launch of a service that is not there succeeds; no process is left behind.
    Embedding page(plugin);
    ASSERT_EQ(page.create({{GetParam().name, "V"}}), 0);
    const Effect effect = GetParam().effect;
    const auto is = [effect](Effect one) { return effect == one; };
    const nsPluginInstance& record = page.record();
    EXPECT_EQ(log.contains("_userpassword='**********'"), is(Effect::kPassword));
    EXPECT_EQ(log.contains("_installmethod='V'"), is(Effect::kMethod));
    EXPECT_EQ(log.contains("install='1'"), is(Effect::kInstall));
    EXPECT_EQ(record.probeVpn, is(Effect::kProbe) ? 1 : 0);
    EXPECT_EQ(log.contains("plugin->probeVpn='1'"), is(Effect::kProbe));
    EXPECT_EQ(log.contains("_last_param='1'"), is(Effect::kLast));
    EXPECT_STREQ(*record.hostRootUrl, is(Effect::kHostRoot) ? "V" : "");
    EXPECT_STREQ(*record.signature, is(Effect::kSignature) ? "V" : "");
    EXPECT_STREQ(*record.nevoUrl, is(Effect::kUrl) ? "V" : "");
    EXPECT_STREQ(*record.nevoSize, is(Effect::kSize) ? "V" : "");
    EXPECT_EQ(launchText(),
              (is(Effect::kForward) ? GetParam().name + std::string("=V&") : "") + browserPid());
}

INSTANTIATE_TEST_SUITE_P(
    Names, MarkerInName,
    testing::Values(
        // Each marker alone, and in the middle of a name.
        Marker{"_userpassword", Effect::kPassword}, Marker{"a_userpasswordb", Effect::kPassword},
        Marker{"_installmethod", Effect::kMethod}, Marker{"a_installmethodb", Effect::kMethod},
        Marker{"_installvpn", Effect::kInstall}, Marker{"a_installvpnb", Effect::kInstall},
        Marker{"_probevpn", Effect::kProbe}, Marker{"a_probevpnb", Effect::kProbe},
        Marker{"last_param", Effect::kLast}, Marker{"_last_param", Effect::kLast},
        Marker{"hostrooturl", Effect::kHostRoot}, Marker{"ahostrooturlb", Effect::kHostRoot},
        Marker{"signature", Effect::kSignature}, Marker{"asignatureb", Effect::kSignature},
        Marker{"nevourl", Effect::kUrl}, Marker{"anevourlb", Effect::kUrl},
        Marker{"nevosize", Effect::kSize}, Marker{"anevosizeb", Effect::kSize},
        // Two neighbours of the order, in either place.
        Marker{"_installmethod_userpassword", Effect::kPassword},
        Marker{"_userpassword_installmethod", Effect::kPassword},
        Marker{"_installvpn_installmethod", Effect::kMethod},
        Marker{"_probevpn_installvpn", Effect::kInstall},
        Marker{"x_probevpn_last_param", Effect::kProbe},
        Marker{"last_param_probevpn", Effect::kProbe},
        Marker{"hostrooturl_last_param", Effect::kLast},
        Marker{"signaturehostrooturl", Effect::kHostRoot},
        Marker{"nevourlsignature", Effect::kSignature}, Marker{"nevosizenevourl", Effect::kUrl},
        Marker{"nevosize_userpassword", Effect::kPassword},
        // Almost markers: case counts, and so does every character.
        Marker{"_UserPassword", Effect::kForward}, Marker{"userpassword", Effect::kForward},
        Marker{"installvpn", Effect::kForward}, Marker{"probevpn", Effect::kForward},
        Marker{"_PROBEVPN", Effect::kForward}, Marker{"last_para", Effect::kForward},
        Marker{"Last_Param", Effect::kForward}, Marker{"hostRootUrl", Effect::kForward},
        Marker{"nevo", Effect::kForward}, Marker{"type", Effect::kForward}),
    [](const auto& row) {
        std::string name = std::to_string(row.index) + row.param.name;
        std::erase_if(name, [](char c) { return std::isalnum(c) == 0; });
        return name;
    });

// Odd lists.

class ArgumentCount : public Parameters, public testing::WithParamInterface<int16> {};

TEST_P(ArgumentCount, BelowOneReadsNothing) {
    char type[] = "application/x-zerva-sslvpn";
    char* unreadable[] = {reinterpret_cast<char*>(1)};
    NPP_t handle{};
    ASSERT_EQ(plugin.newp(type, &handle, 1, GetParam(), unreadable, unreadable, nullptr), 0);
    const std::string count = std::to_string(GetParam());
    EXPECT_TRUE(logged("[NS_NewPluginInstance] Parsing input arguments, count='" + count + "'\n"));
    EXPECT_TRUE(logged("[NS_NewPluginInstance] " + count + ". hosturl=, nevoURL=. nevosize=\n"));
    EXPECT_TRUE(logged("[NS_NewPluginInstance] nothing to do\n"));
    EXPECT_EQ(launchText(), browserPid());
    plugin.destroy(&handle, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Counts, ArgumentCount, testing::Values(0, -1, -32768),
                         [](const auto& row) { return "Minus" + std::to_string(-row.param); });

TEST_F(Parameters, MissingNamesAndValuesCountAsEmpty) {
    Embedding page(plugin);
    ASSERT_EQ(
        page.create({{nullptr, "v"}, {"n", nullptr}, {nullptr, nullptr}, {"signature", nullptr}}),
        0);
    EXPECT_EQ(launchText(), "=v&n=&=&" + browserPid());
    EXPECT_STREQ(*page.record().signature, "");
}

TEST_F(Parameters, MissingListsCountAsEmptyTexts) {
    char type[] = "application/x-zerva-sslvpn";
    NPP_t handle{};
    ASSERT_EQ(plugin.newp(type, &handle, 1, 2, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(launchText(), "=&=&" + browserPid());
    plugin.destroy(&handle, nullptr);
}

TEST_F(Parameters, ThousandsAndLongOnesAreForwardedWhole) {
    const std::string longValue(1 << 20, 'v');
    Embedding::Parameters many(10000, {"name", "value"});
    many.push_back({"long", longValue.c_str()});
    std::string expected;
    for (int i = 0; i < 10000; ++i) expected += "name=value&";
    Embedding page(plugin);
    ASSERT_EQ(page.create(many), 0);
    EXPECT_TRUE(launchText() == expected + "long=" + longValue + "&" + browserPid());
}

TEST_F(Parameters, AMissingUserAgentDoesNoHarm) {
    browser.userAgent = nullptr;
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(log.linesStarting("[NS_NewPluginInstance] User Agent:'").size(), 1U);
}

TEST_F(Parameters, NoLogObjectChangesNothing) {
    removeLog();
    Embedding page(plugin);
    EXPECT_EQ(page.create({{"a", "1"}, {"_probevpn", ""}, {"_userpassword", "x"}}), 0);
    EXPECT_EQ(page.record().probeVpn, 1);
    EXPECT_THAT(log.events(), IsEmpty());
}

}  // namespace
