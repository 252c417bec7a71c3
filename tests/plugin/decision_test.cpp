#include <unistd.h>

#include "child_process.h"
#include "plugin_test.h"
#include "service_files.h"

// What a new instance does with the service: the decision, the probe, the launch and its outcomes,
// with real programs and a real pid file.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAlreadyRunsUrl[] =
    "javascript:c_addcomm('&sslsetstatus,v1,disconnectedwitherror,1')";

class Decision : public PluginTest {
  protected:
    Decision() { removeServiceFiles(); }
    ~Decision() override { removeServiceFiles(); }

    std::vector<std::string> requested() const { return summary(browser.requests); }
};

// Which action.

enum class Action { kNothing, kSilence, kProbe, kLaunch };

struct Flags {
    bool install;
    bool probe;
    bool last;
    Action action;
};

class DecisionTable : public Decision, public testing::WithParamInterface<Flags> {};

TEST_P(DecisionTable, ChoosesTheAction) {
    installService("note exit=0");
    Embedding::Parameters parameters;
    if (GetParam().install) parameters.emplace_back("_installvpn", "");
    if (GetParam().last) parameters.emplace_back("last_param", "");
    if (GetParam().probe) parameters.emplace_back("_probevpn", "");
    Embedding page(plugin);
    ASSERT_EQ(page.create(parameters), 0);

    const Action action = GetParam().action;
    EXPECT_EQ(log.contains("nothing to do"), action == Action::kNothing);
    EXPECT_EQ(log.contains("[NS_ProbeVpn]"), action == Action::kProbe);
    EXPECT_EQ(log.contains("[NS_NewPluginInstance] NS_LaunchVpn\n"), action == Action::kLaunch);
    EXPECT_EQ(serviceReport().empty(), action != Action::kLaunch);
    EXPECT_EQ(browser.requests.size(),
              action == Action::kProbe || action == Action::kLaunch ? 1U : 0U);
    EXPECT_EQ(page.record().doNotTerminate, action == Action::kLaunch ? 0 : 1);
    EXPECT_TRUE(log.contains("[NS_NewPluginInstance] install='" +
                             std::to_string(GetParam().install) + "' plugin->probeVpn='" +
                             std::to_string(GetParam().probe) + "' _last_param='" +
                             std::to_string(GetParam().last) + "'\n"));
    EXPECT_TRUE(log.contains("[NS_NewPluginInstance] Done\n"));
}

INSTANTIATE_TEST_SUITE_P(Flags, DecisionTable,
                         testing::Values(Flags{false, false, false, Action::kNothing},
                                         Flags{false, false, true, Action::kLaunch},
                                         Flags{false, true, false, Action::kProbe},
                                         Flags{false, true, true, Action::kProbe},
                                         Flags{true, false, false, Action::kSilence},
                                         Flags{true, false, true, Action::kLaunch},
                                         Flags{true, true, false, Action::kProbe},
                                         Flags{true, true, true, Action::kProbe}),
                         [](const auto& row) {
                             return std::string("Install") + (row.param.install ? "1" : "0") +
                                    "Probe" + (row.param.probe ? "1" : "0") + "Last" +
                                    (row.param.last ? "1" : "0");
                         });

// The probe.

TEST_F(Decision, AProbeAsksTheServiceForItsState) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"_probevpn", "anything"}}), 0);
    EXPECT_THAT(requested(), ElementsAre("3 http://127.0.0.1:44444/vpn.php?INFO"));
    EXPECT_EQ(browser.lastRequest().instance, page.handle());
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), "http://127.0.0.1:44444/vpn.php?INFO");
    EXPECT_EQ(page.record().doNotTerminate, 1);
    EXPECT_THAT(log.linesStarting("[NS_ProbeVpn]"),
                ElementsAre("[NS_ProbeVpn] Checking nevo\n",
                            "[NS_ProbeVpn] Call Init url='http://127.0.0.1:44444/vpn.php?INFO'\n"));
    EXPECT_FALSE(log.contains("Error call of"));
}

class RefusedProbe : public Decision, public testing::WithParamInterface<int> {};

TEST_P(RefusedProbe, IsLoggedAndLeavesTheInstanceAlive) {
    browser.answerRequest = [](int) { return static_cast<NPError>(GetParam()); };
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    EXPECT_TRUE(page.isAlive());
    EXPECT_THAT(log.linesStarting("[NS_ProbeVpn] ERROR!"),
                ElementsAre("[NS_ProbeVpn] ERROR! cannot call GetURL. "
                            "url='http://127.0.0.1:44444/vpn.php?INFO', errorcode='" +
                            std::to_string(GetParam()) + "'\n"));
    EXPECT_THAT(log.linesStarting("[NS_NewPluginInstance] Error call"),
                ElementsAre("[NS_NewPluginInstance] Error call of NS_probeVpn. '-7'\n"));
    EXPECT_TRUE(log.contains("[NS_NewPluginInstance] Done\n"));
    EXPECT_EQ(page.record().doNotTerminate, 1);
}

INSTANTIATE_TEST_SUITE_P(Errors, RefusedProbe, testing::Range(1, 16),
                         testing::PrintToStringParamName());

// The launch.

TEST_F(Decision, AStartedServiceIsAskedToConnect) {
    installService("exit=0");
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_THAT(requested(), ElementsAre("3 http://127.0.0.1:44444/vpn.php?CONNECT"));
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), "http://127.0.0.1:44444/vpn.php?CONNECT");
    EXPECT_EQ(page.record().doNotTerminate, 0);
    EXPECT_THAT(
        log.linesStarting("[NS_LaunchVpn]"),
        ElementsAre("[NS_LaunchVpn]\n", "[NS_LaunchVpn] SERVER_STATUS_JUST_STARTED\n",
                    "[NS_LaunchVpn] Call Init url='http://127.0.0.1:44444/vpn.php?CONNECT'\n",
                    "[NS_LaunchVpn] Call finished'\n"));
    EXPECT_FALSE(log.contains("Error call of"));
}

TEST_F(Decision, AServiceThatIsNotInstalledIsToldToThePage) {
    installService("exit=2");
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_THAT(requested(), ElementsAre("1 javascript:VPNNotInstalled()"));
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), "");
    EXPECT_EQ(page.record().doNotTerminate, 1);
    EXPECT_THAT(log.linesStarting("[NS_LaunchVpn]"),
                ElementsAre("[NS_LaunchVpn]\n", "[NS_LaunchVpn] VPN_NOT_INSTALLED\n",
                            "[NS_LaunchVpn] call GetURL, buf='javascript:VPNNotInstalled()'\n"));
}

TEST_F(Decision, AServiceThatRunsAlreadyIsToldToThePage) {
    installService("note");
    const ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_THAT(requested(), ElementsAre(std::string("2 ") + kAlreadyRunsUrl));
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), kAlreadyRunsUrl);
    EXPECT_EQ(page.record().doNotTerminate, 1);
    EXPECT_EQ(serviceReport(), "");
    EXPECT_THAT(
        log.linesStarting("[NS_LaunchVpn]"),
        ElementsAre("[NS_LaunchVpn]\n", "[NS_LaunchVpn] SERVER_STATUS_ALREADY_LAUNCHED\n",
                    std::string("[NS_LaunchVpn] call GetURL, buf='") + kAlreadyRunsUrl + "'\n"));
}

TEST_F(Decision, AnyOtherLaunchOutcomeFailsTheInstance) {
    installService("signal=9");
    Embedding page(plugin);
    EXPECT_EQ(page.create({{"last_param", ""}}), 5);
    EXPECT_FALSE(page.isAlive());
    EXPECT_THAT(requested(), IsEmpty());
    EXPECT_THAT(log.linesStarting("[NS_LaunchVpn] ERROR!"),
                ElementsAre("[NS_LaunchVpn] ERROR! Unkown 'LaunchVPN' return value '-5'\n"));
    EXPECT_TRUE(log.contains("[NS_NewPluginInstance] Error call of NS_LaunchVpn. '-6'\n"));
    EXPECT_EQ(log.lines().back(), "[NS_NewPluginInstance] Done\n");
    EXPECT_EQ(browser.count("createobject"), 0);
    EXPECT_EQ(browser.count("setvalue"), 0);
}

// Refused launches.

struct Outcome {
    const char* name;
    const char* orders;
    bool runs;
    const char* urlInLine;
};

class RefusedLaunch : public Decision,
                      public testing::WithParamInterface<std::tuple<Outcome, int>> {};

TEST_P(RefusedLaunch, FailsTheInstanceAndLogsTheKeptUrl) {
    const auto& [outcome, error] = GetParam();
    installService(outcome.orders);
    const ChildProcess running("nevo");
    if (outcome.runs) writePidFile(std::to_string(running.pid()));
    browser.answerRequest = [code = static_cast<NPError>(error)](int) { return code; };
    Embedding page(plugin);
    EXPECT_EQ(page.create({{"last_param", ""}}), 5);
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(browser.requests.size(), 1U);
    EXPECT_THAT(log.linesStarting("[NS_LaunchVpn] ERROR!"),
                ElementsAre("[NS_LaunchVpn] ERROR! cannot call GetURL. url='" +
                            std::string(outcome.urlInLine) + "', errorcode='" +
                            std::to_string(error) + "'\n"));
    EXPECT_TRUE(log.contains("[NS_NewPluginInstance] Error call of NS_LaunchVpn. '-7'\n"));
    // The instance fails without stopping the service or clearing the notify records.
    EXPECT_FALSE(log.contains("[NS_DestroyPluginInstance]"));
    EXPECT_FALSE(log.contains("[destroyNotifyData]"));
    EXPECT_FALSE(log.contains("', '1')"));
    EXPECT_FALSE(log.contains("<Close()>"));
}

INSTANTIATE_TEST_SUITE_P(
    Outcomes, RefusedLaunch,
    testing::Combine(
        testing::Values(Outcome{"Started", "exit=0", false, "javascript:VPNInstallationOK()"},
                        Outcome{"NotInstalled", "exit=2", false, "javascript:VPNInstallationOK()"},
                        Outcome{"AlreadyRuns", "", true, kAlreadyRunsUrl}),
        testing::Values(1, 2, 8, 9, 15)),
    [](const auto& row) {
        return std::get<0>(row.param).name + std::to_string(std::get<1>(row.param));
    });

// Browsers without notification.

class OldBrowser : public UninitializedPluginTest {
  protected:
    OldBrowser() {
        removeServiceFiles();
        browser.table.version = 8;
        start();
        log.clear();
    }
    ~OldBrowser() override { removeServiceFiles(); }
};

TEST_F(OldBrowser, IsNotAskedAndTheProbeIsRefused) {
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    EXPECT_THAT(browser.requests, IsEmpty());
    EXPECT_TRUE(log.contains("errorcode='8'"));
    EXPECT_TRUE(log.contains("Error call of NS_probeVpn. '-7'\n"));
}

TEST_F(OldBrowser, EveryLaunchOutcomeIsRefused) {
    for (const char* orders : {"exit=0", "exit=2"}) {
        log.clear();
        installService(orders);
        Embedding page(plugin);
        EXPECT_EQ(page.create({{"last_param", ""}}), 5) << orders;
        EXPECT_TRUE(log.contains("errorcode='8'"));
        EXPECT_TRUE(log.contains("Error call of NS_LaunchVpn. '-7'\n"));
    }
    const ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    Embedding page(plugin);
    EXPECT_EQ(page.create({{"last_param", ""}}), 5);
    EXPECT_THAT(browser.requests, IsEmpty());
}

// What the service gets.

TEST_F(Decision, TheServiceReadsThePagesParametersToTheLastByte) {
    installService("input exit=0");
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"a", "%s '\"\\&=\n"}, {"_userpassword", "s3cret"}, {"last_param", ""}}),
              0);
    EXPECT_EQ(serviceInput(), "a=%s '\"\\&=\n&browser_pid=" + std::to_string(getpid()) + "&");
}

TEST_F(Decision, TheServiceReadsAMegabyteToTheLastByte) {
    installService("input exit=0");
    const std::string longValue(1 << 20, 'v');
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"long", longValue.c_str()}, {"last_param", ""}}), 0);
    EXPECT_TRUE(serviceInput() ==
                "long=" + longValue + "&browser_pid=" + std::to_string(getpid()) + "&");
}

// What happens to the service when the page goes.

TEST_F(Decision, AServiceThatThisInstanceStartedIsStoppedWithIt) {
    installService("background exit=0");
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    const pid_t service = std::stoi(readFile(kPidFile));
    browser.calls.clear();
    log.clear();
    page.destroy();
    awaitEnd(service);
    EXPECT_EQ(log.events().at(1), "[NS_DestroyPluginInstance] doNotTerminate = 0\n");
    EXPECT_EQ(log.events().at(2), "[LaunchVPN] ('', '1')\n");
    EXPECT_TRUE(browser.requests.size() == 1);
}

TEST_F(Decision, StoppingLogsTheInstancesText) {
    installService("exit=0");
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    page.deliverStream(browser.lastRequest(), "the last answer");
    page.destroy();
    EXPECT_TRUE(log.contains("[LaunchVPN] ('the last answer', '1')\n"));
}

TEST_F(Decision, AServiceThatRanBeforeIsLeftAlone) {
    installService("");
    ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    Embedding page(plugin);
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    page.destroy();
    EXPECT_FALSE(log.contains("', '1')"));
    EXPECT_EQ(kill(running.pid(), 0), 0);
}

TEST_F(Decision, TwoInstancesMayBothStartTheService) {
    installService("exit=0");
    Embedding first(plugin);
    Embedding second(plugin);
    ASSERT_EQ(first.create({{"last_param", ""}}), 0);
    ASSERT_EQ(second.create({{"last_param", ""}}), 0);
    EXPECT_EQ(browser.requests.size(), 2U);
    EXPECT_EQ(first.record().doNotTerminate, 0);
    EXPECT_EQ(second.record().doNotTerminate, 0);
}

}  // namespace
