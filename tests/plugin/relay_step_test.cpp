#include <unistd.h>

#include <filesystem>

#include "notify_data.h"
#include "relay_fixture.h"

// Which step of the conversation follows which notice of the browser's.

namespace {

using testing::ElementsAre;

enum class PidFile { kNone, kEmpty, kFolder, kAlive, kDead };

struct Step {
    const char* name;
    int type;
    NPReason reason;
    bool started;  // the instance started the service
    PidFile pidFile;
    std::string next;  // the request that follows; "" for none
};

class StepTable : public Relay, public testing::WithParamInterface<Step> {
  protected:
    static void writePid(PidFile kind) {
        switch (kind) {
            case PidFile::kNone:
                return;
            case PidFile::kEmpty:
                return writePidFile("");
            case PidFile::kFolder:
                std::filesystem::create_directories(kPidFile);
                return;
            case PidFile::kAlive:
                return writePidFile(std::to_string(getpid()));
            case PidFile::kDead:
                return writePidFile(std::to_string(deadPid()));
        }
    }
};

TEST_P(StepTable, FollowsFromTypeReasonAndServiceProcess) {
    const Step& step = GetParam();
    if (step.started) {
        launch(page);
    } else {
        ASSERT_EQ(page.create(), 0);
    }
    browser.requests.clear();
    writePid(step.pidFile);
    streamData notify{};
    notify.type = 3;
    page.deliverStream({page.handle(), "http://here/", nullptr, &notify, true}, "text");
    notify.type = step.type;
    plugin.urlnotify(page.handle(), "http://here/", step.reason, &notify);
    const auto expected =
        step.next.empty() ? std::vector<std::string>{} : std::vector<std::string>{step.next};
    EXPECT_EQ(summary(browser.requests), expected);
    EXPECT_EQ(log.contains("[PluginInstance_URLNotify] ERROR! Network Error.\n"), step.reason == 1);
    EXPECT_EQ(log.contains("[GetDataFromNevo]\n"), step.reason == 1 && step.type == 3);
    EXPECT_EQ(log.contains("Skip browser message"), step.type == 2 && !step.started);
    std::filesystem::remove_all(kPidFile);
}

// With nobody listening on the service's port, a failed service request is a lost service.
INSTANTIATE_TEST_SUITE_P(
    Steps, StepTable,
    testing::Values(
        Step{"ScriptDone", 1, 0, true, PidFile::kNone, ""},
        Step{"ScriptNetworkError", 1, 1, true, PidFile::kNone, ""},
        Step{"ScriptBroken", 1, 2, true, PidFile::kDead, ""},
        Step{"PageDone", 2, 0, true, PidFile::kNone, toService("text", 0)},
        Step{"PageNetworkError", 2, 1, true, PidFile::kNone, toService("text", 0)},
        Step{"PageBroken", 2, 2, true, PidFile::kNone, toService("text", 0)},
        Step{"PageDoneServiceAlive", 2, 0, true, PidFile::kAlive, toService("text", 0)},
        Step{"PageNetworkErrorServiceAlive", 2, 1, true, PidFile::kAlive, toService("text", 0)},
        Step{"PageDoneServiceDead", 2, 0, true, PidFile::kDead, kDrop},
        Step{"PageNetworkErrorServiceDead", 2, 1, true, PidFile::kDead, kDrop},
        Step{"PageBrokenServiceDead", 2, 2, true, PidFile::kDead, kDrop},
        Step{"PageDoneEmptyPidFile", 2, 0, true, PidFile::kEmpty, toService("text", 0)},
        Step{"PageDoneFolderForPidFile", 2, 0, true, PidFile::kFolder, toService("text", 0)},
        Step{"PageDoneNotOurs", 2, 0, false, PidFile::kNone, ""},
        Step{"PageDoneNotOursServiceDead", 2, 0, false, PidFile::kDead, ""},
        Step{"PageNetworkErrorNotOurs", 2, 1, false, PidFile::kDead, ""},
        Step{"ServiceDone", 3, 0, true, PidFile::kNone, toPage("text")},
        Step{"ServiceDoneProcessDead", 3, 0, true, PidFile::kDead, toPage("text")},
        Step{"ServiceBroken", 3, 2, true, PidFile::kNone, toPage("text")},
        Step{"ServiceNetworkError", 3, 1, true, PidFile::kNone, kDrop},
        Step{"ServiceNetworkErrorProcessAlive", 3, 1, true, PidFile::kAlive, kDrop},
        Step{"ServiceDoneNotOurs", 3, 0, false, PidFile::kNone, toPage("text")},
        Step{"ServiceNetworkErrorNotOurs", 3, 1, false, PidFile::kNone, kDrop},
        Step{"OtherTypeDone", 4, 0, true, PidFile::kDead, ""},
        Step{"OtherTypeNetworkError", 0, 1, true, PidFile::kNone, ""}),
    [](const auto& row) { return std::string(row.param.name); });

// A service that is gone.

TEST_F(Relay, AServiceThatIsGoneIsToldToThePageOnce) {
    launch(page);
    answer("x");
    const pid_t gone = deadPid();
    writePidFile(std::to_string(gone) + "\n");
    forget();
    answer("command");
    EXPECT_EQ(last(), kDrop);
    EXPECT_FALSE(browser.lastRequest().wantsNotice);
    EXPECT_EQ(browser.lastRequest().instance, page.handle());
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), "javascript:c_addcomm('ssldrop')");
    const std::vector<std::string> lines = log.lines();
    const std::vector<std::string> lastTwo(lines.end() - 2, lines.end());
    EXPECT_THAT(lastTwo, ElementsAre("[PluginInstance_URLNotify] ERROR! nevo is not running (pid=" +
                                         std::to_string(gone) + "). error=3, str=No such process\n",
                                     "[PluginInstance_URLNotify] call GetURL, "
                                     "buf='javascript:c_addcomm('ssldrop')'\n"));
    // The call's stream carries no record and ends the conversation.
    page.deliver(browser.lastRequest(), "ignored");
    EXPECT_EQ(last(), kDrop);
    std::filesystem::remove(kPidFile);
}

TEST_F(Relay, ARefusedDropNoticeIsNotEvenLogged) {
    launch(page);
    writePidFile(std::to_string(deadPid()));
    answer("x");
    const BrowserRequest call = browser.lastRequest();
    browser.answerRequest = [](int) -> NPError { return 1; };
    page.deliver(call, "c");
    EXPECT_FALSE(log.contains("cannot call GetURL"));
    std::filesystem::remove(kPidFile);
}

TEST_F(Relay, AZombieOfTheServiceStillCountsAsRunning) {
    launch(page);
    answer("x");
    ChildProcess service("nevo");
    service.makeZombie();
    writePidFile(std::to_string(service.pid()));
    answer("c");
    EXPECT_EQ(last(), toService("c", 0));
    std::filesystem::remove(kPidFile);
}

}  // namespace
