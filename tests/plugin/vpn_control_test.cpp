#include "vpn_control.h"

#include <string>
#include <vector>

#include "npn_gate.h"
#include "plugin_test.h"
#include "row_name.h"

// The probe and the launch called directly, with a launcher of the test's own: what they return and
// what they do to the record.

namespace {

// What the launcher answers, and what it was asked as "TEXT STOP".
struct ScriptedLauncher {
    int result = 0;
    std::vector<std::string> asked;
};

ScriptedLauncher* current = nullptr;

}  // namespace

// The linker sends LaunchVPN(const char*, int) here.
extern "C" int __wrap__Z9LaunchVPNPKci(const char* launchData, int stop) {
    current->asked.push_back(std::string(launchData) + " " + std::to_string(stop));
    return current->result;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kInfoUrl[] = "http://127.0.0.1:44444/vpn.php?INFO";
constexpr char kConnectUrl[] = "http://127.0.0.1:44444/vpn.php?CONNECT";
constexpr char kAlreadyRunsUrl[] =
    "javascript:c_addcomm('&sslsetstatus,v1,disconnectedwitherror,1')";

class VpnControl : public PluginTest {
  protected:
    VpnControl() {
        current = &launcher;
        tagPluginCreateData createData = {};
        createData.instance = &handle;
        record = NS_NewPluginInstance(&createData);
        *record->urlBuffer = "earlier";
        log.clear();
        browser.calls.clear();
    }
    ~VpnControl() override {
        NS_DestroyPluginInstance(record);
        current = nullptr;
    }

    int launch(int launcherResult, int option = 0) {
        launcher.result = launcherResult;
        return NS_LaunchVpn(record, "launch text", option);
    }
    void refuse(NPError error) {
        browser.answerRequest = [error](int) { return error; };
    }
    // A browser from before notifications of URL requests.
    static void makeBrowserOld() { NPNFuncs.version = 8; }

    std::string urlBuffer() const { return static_cast<const char*>(*record->urlBuffer); }

    ScriptedLauncher launcher;
    NPP_t handle{};
    nsPluginInstance* record = nullptr;
};

// The launch's outcomes.

struct Outcome {
    const char* rule;
    int launcherResult;
    int status;
    const char* request;  // "TYPE URL"
    const char* urlBuffer;
    const char* urlInRefusal;
    // `doNotTerminate` during the request and afterwards, if it was 0 and if it was 1 before.
    int during[2];
    int after[2];
};

const Outcome kOutcomes[] = {
    {"Started",
     0,
     0,
     "3 http://127.0.0.1:44444/vpn.php?CONNECT",
     kConnectUrl,
     "javascript:VPNInstallationOK()",
     {0, 1},
     {0, 0}},
    {"AlreadyRuns",
     -1,
     -1,
     "2 javascript:c_addcomm('&sslsetstatus,v1,disconnectedwitherror,1')",
     kAlreadyRunsUrl,
     kAlreadyRunsUrl,
     {1, 1},
     {1, 1}},
    {"NotInstalled",
     -2,
     -2,
     "1 javascript:VPNNotInstalled()",
     "earlier",
     "javascript:VPNInstallationOK()",
     {0, 1},
     {0, 1}},
};

class LaunchOutcome : public VpnControl, public testing::WithParamInterface<Outcome> {};

TEST_P(LaunchOutcome, HasItsStatusItsRequestAndItsTraceInTheRecord) {
    const Outcome& outcome = GetParam();
    for (const int before : {0, 1}) {
        record->doNotTerminate = before;
        int during = -1;
        browser.insideRequest = [&](const BrowserRequest&) { during = record->doNotTerminate; };
        browser.requests.clear();
        EXPECT_EQ(launch(outcome.launcherResult), outcome.status);
        EXPECT_THAT(summary(browser.requests), ElementsAre(outcome.request));
        EXPECT_EQ(browser.lastRequest().instance, &handle);
        EXPECT_EQ(browser.lastRequest().target, nullptr);
        EXPECT_EQ(urlBuffer(), outcome.urlBuffer);
        EXPECT_EQ(during, outcome.during[before]);
        EXPECT_EQ(record->doNotTerminate, outcome.after[before]);
    }
}

TEST_P(LaunchOutcome, ThatTheBrowserRefusesIsMinusSevenAndLeavesTheSameTrace) {
    const Outcome& outcome = GetParam();
    refuse(9);
    for (const int before : {0, 1}) {
        record->doNotTerminate = before;
        log.clear();
        EXPECT_EQ(launch(outcome.launcherResult), -7);
        EXPECT_EQ(log.lines().back(),
                  std::string("[NS_LaunchVpn] ERROR! cannot call GetURL. url='") +
                      outcome.urlInRefusal + "', errorcode='9'\n");
        EXPECT_EQ(urlBuffer(), outcome.urlBuffer);
        EXPECT_EQ(record->doNotTerminate, outcome.after[before]);
    }
}

TEST_P(LaunchOutcome, IsRefusedWithNumberEightForABrowserWithoutNotification) {
    const Outcome& outcome = GetParam();
    makeBrowserOld();
    EXPECT_EQ(launch(outcome.launcherResult), -7);
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_TRUE(log.lines().back().ends_with("errorcode='8'\n"));
    EXPECT_EQ(record->doNotTerminate, outcome.after[1]);
}

INSTANTIATE_TEST_SUITE_P(Of, LaunchOutcome, testing::ValuesIn(kOutcomes), nameOfRow);

TEST_F(VpnControl, ACallThatStartedTheServiceIsFinishedBeforeItsRefusalIsLogged) {
    refuse(1);
    launch(0);
    EXPECT_THAT(log.lines(),
                ElementsAre("[NS_LaunchVpn]\n", "[NS_LaunchVpn] SERVER_STATUS_JUST_STARTED\n",
                            std::string("[NS_LaunchVpn] Call Init url='") + kConnectUrl + "'\n",
                            "[NS_LaunchVpn] Call finished'\n",
                            "[NS_LaunchVpn] ERROR! cannot call GetURL. "
                            "url='javascript:VPNInstallationOK()', errorcode='1'\n"));
}

class UnknownOutcome : public VpnControl, public testing::WithParamInterface<int> {};

TEST_P(UnknownOutcome, IsLoggedAndDoesNothing) {
    for (const int before : {0, 1}) {
        record->doNotTerminate = before;
        log.clear();
        EXPECT_EQ(launch(GetParam()), -6);
        EXPECT_THAT(log.events(),
                    ElementsAre("[NS_LaunchVpn]\n",
                                "[NS_LaunchVpn] ERROR! Unkown 'LaunchVPN' return value '" +
                                    std::to_string(GetParam()) + "'\n"));
        EXPECT_THAT(browser.calls, IsEmpty());
        EXPECT_EQ(urlBuffer(), "earlier");
        EXPECT_EQ(record->doNotTerminate, before);
    }
}

INSTANTIATE_TEST_SUITE_P(Results, UnknownOutcome, testing::Values(-5, -3, -4, -6, -7, 1, 2, 100));

TEST_F(VpnControl, TheLauncherStartsWithTheTextWhateverTheOption) {
    for (const int option : {0, 1, -1}) {
        launcher.asked.clear();
        EXPECT_EQ(launch(0, option), 0);
        EXPECT_THAT(launcher.asked, ElementsAre("launch text 0"));
    }
}

// The probe.

class Probe : public VpnControl {
  protected:
    // Probes with every state of the flags, which must stay as they are.
    void expectStatus(int status) {
        for (const int flag : {0, 1}) {
            record->doNotTerminate = flag;
            record->probeVpn = 1 - flag;
            EXPECT_EQ(NS_ProbeVpn(record), status);
            EXPECT_EQ(record->doNotTerminate, flag);
            EXPECT_EQ(record->probeVpn, 1 - flag);
            EXPECT_EQ(urlBuffer(), kInfoUrl);
        }
        EXPECT_THAT(launcher.asked, IsEmpty());
    }
};

TEST_F(Probe, ThatTheBrowserTakesIsAHundred) {
    expectStatus(100);
    EXPECT_THAT(summary(browser.requests), testing::Each(std::string("3 ") + kInfoUrl));
}

TEST_F(Probe, ThatTheBrowserRefusesIsMinusSeven) {
    refuse(1);
    expectStatus(-7);
}

TEST_F(Probe, IsRefusedWithNumberEightForABrowserWithoutNotification) {
    makeBrowserOld();
    expectStatus(-7);
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_TRUE(log.contains("errorcode='8'"));
}

}  // namespace
