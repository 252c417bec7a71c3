#include <unistd.h>

#include <filesystem>

#include "child_process.h"
#include "notify_data.h"
#include "plugin_test.h"
#include "sandbox_main.h"
#include "scripted_service.h"
#include "service_files.h"

// The conversation between page and service, step by step.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kService[] = "http://127.0.0.1:44444/vpn.php";
constexpr char kDrop[] = "- javascript:c_addcomm('ssldrop')";

std::string toPage(const std::string& answer) { return "2 javascript:c_addcomm('" + answer + "')"; }

std::string toService(const std::string& command, int counter) {
    return std::string("3 ") + kService + "?" + command + "&z=" + std::to_string(counter);
}

class Relay : public PluginTest {
  protected:
    Relay() { removeServiceFiles(); }
    ~Relay() override { removeServiceFiles(); }

    // An instance that has started the service and waits for the answer to its first request.
    void launch(Embedding& instance) {
        installService("exit=0");
        ASSERT_EQ(instance.create({{"last_param", ""}}), 0);
        forget();
    }
    // An instance that has found the service running.
    void findRunning(Embedding& instance) {
        const ChildProcess running("nevo");
        writePidFile(std::to_string(running.pid()));
        ASSERT_EQ(instance.create({{"last_param", ""}}), 0);
        std::filesystem::remove(kPidFile);
        forget();
    }
    void probe(Embedding& instance) {
        ASSERT_EQ(instance.create({{"_probevpn", ""}}), 0);
        forget();
    }

    // Empties log and account but for the request that waits for its answer.
    void forget() {
        log.clear();
        browser.calls.clear();
        browser.requests.erase(browser.requests.begin(), browser.requests.end() - 1);
    }

    // Answers the last request.
    void answer(std::string_view text, const Delivery& how = {}) {
        page.deliver(browser.lastRequest(), text, how);
    }

    std::string last() const { return summary(browser.requests).back(); }

    Embedding page{plugin};
};

// --- service to page ---

TEST_F(Relay, AServiceAnswerGoesToThePage) {
    launch(page);
    answer("state=up");
    EXPECT_EQ(last(), toPage("state=up"));
    EXPECT_EQ(browser.lastRequest().instance, page.handle());
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), "javascript:c_addcomm('state=up')");
    EXPECT_THAT(log.linesStarting("[sendToJavaScript]"),
                ElementsAre("[sendToJavaScript] Data from server ='state=up'\n",
                            "[sendToJavaScript] call GetURL, "
                            "buf='javascript:c_addcomm('state=up')'\n"));
    EXPECT_THAT(log.linesStarting("[PluginInstance_URLNotify] response"),
                ElementsAre("[PluginInstance_URLNotify] response notify for NEVO_HTTP "
                            "='state=up'\n"));
}

struct Correction {
    const char* name;
    const char* answer;
    const char* body;
    bool corrected;
};

class HeaderRemoval : public Relay, public testing::WithParamInterface<Correction> {};

TEST_P(HeaderRemoval, TakesAwayWhatStandsBeforeTheFirstBlankLine) {
    launch(page);
    answer(GetParam().answer);
    EXPECT_EQ(last(), toPage(GetParam().body));
    EXPECT_EQ(page.data(), GetParam().body);
    const std::string line =
        std::string("[sendToJavaScript] Data from server corrected='") + GetParam().body + "'\n";
    if (GetParam().corrected) {
        EXPECT_THAT(log.linesStarting("[sendToJavaScript] Data from server corrected"),
                    ElementsAre(line));
    } else {
        EXPECT_FALSE(log.contains("corrected"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Answers, HeaderRemoval,
    testing::Values(Correction{"None", "whole", "whole", false},
                    Correction{"AtTheStart", "\r\n\r\nbody", "\r\n\r\nbody", false},
                    Correction{"AtOne", "x\r\n\r\nbody", "body", true},
                    Correction{"HeaderOnly", "HTTP/1.1 200 OK\r\n\r\n", "", true},
                    Correction{"Twice", "a\r\n\r\nb\r\n\r\nc", "b\r\n\r\nc", true},
                    Correction{"StartAndMiddle", "\r\n\r\nb\r\n\r\nc", "\r\n\r\nb\r\n\r\nc", false},
                    Correction{"Overlapping", "a\r\n\r\n\r\nb", "\r\nb", true},
                    Correction{"LineFeedsOnly", "a\n\nb", "a\n\nb", false},
                    Correction{"Incomplete", "a\r\n\rb", "a\r\n\rb", false},
                    Correction{"Empty", "", "", false}),
    [](const auto& row) { return std::string(row.param.name); });

class AwkwardText : public Relay, public testing::WithParamInterface<const char*> {};

TEST_P(AwkwardText, ReachesThePageAsItIs) {
    launch(page);
    answer(GetParam());
    EXPECT_EQ(last(), toPage(GetParam()));
}

TEST_P(AwkwardText, ReachesTheServiceAsItIs) {
    launch(page);
    answer("x");
    answer(GetParam());
    EXPECT_EQ(last(), toService(GetParam(), 0));
}

INSTANTIATE_TEST_SUITE_P(Texts, AwkwardText,
                         testing::Values("it's", "back\\slash", "line\r\nbreak", "%n %s %d %1",
                                         "</script>", "\xC3\xA9\xFF", "a b#c", "x&z=9",
                                         "@evil.example/", "ssldrop"),
                         [](const auto& row) { return "Text" + std::to_string(row.index); });

class AnswerOfSize : public Relay, public testing::WithParamInterface<std::tuple<int, int>> {};

TEST_P(AnswerOfSize, ReachesThePageWholeHoweverItIsCut) {
    const auto [size, chunk] = GetParam();
    std::string text;
    while (text.size() < static_cast<std::size_t>(size)) text += std::to_string(text.size()) + ",";
    text.resize(static_cast<std::size_t>(size));
    launch(page);
    answer(text, {.chunk = chunk});
    EXPECT_TRUE(last() == toPage(text));
}

INSTANTIATE_TEST_SUITE_P(SizesAndChunks, AnswerOfSize,
                         testing::Combine(testing::Values(1, 2, 197, 63999, 64000, 64001, 300000),
                                          testing::Values(0, 197, 8128)),
                         [](const auto& row) {
                             return "Size" + std::to_string(std::get<0>(row.param)) + "Chunk" +
                                    std::to_string(std::get<1>(row.param));
                         });

TEST_F(Relay, ABlankLineIsFoundAcrossBlocks) {
    launch(page);
    answer("head\r\n\r\nbody", {.chunk = 1});
    EXPECT_EQ(last(), toPage("body"));
}

TEST_F(Relay, ASearchForTheBlankLineStopsAtAZeroByte) {
    launch(page);
    answer(std::string_view("a\0b\r\n\r\nc", 9));
    EXPECT_FALSE(log.contains("corrected"));
    EXPECT_EQ(page.record().data->GetLength(), 9);
    EXPECT_EQ(last(), "2 javascript:c_addcomm('a");
}

TEST_F(Relay, ARefusedPageCallIsLoggedAndEndsTheLoop) {
    launch(page);
    browser.answerRequest = [](int) -> NPError { return 9; };
    answer("x");
    EXPECT_EQ(browser.requests.size(), 2U);
    EXPECT_THAT(log.linesStarting("[sendToJavaScript] ERROR!"),
                ElementsAre("[sendToJavaScript] ERROR! cannot call GetURL. "
                            "url='javascript:c_addcomm('x')', errorcode='9'\n"));
}

// --- page to service ---

TEST_F(Relay, APageResultGoesToTheServiceWithTheCounter) {
    launch(page);
    answer("x");
    forget();
    answer("cmd=1");
    EXPECT_EQ(last(), toService("cmd=1", 0));
    EXPECT_EQ(browser.lastRequest().instance, page.handle());
    EXPECT_EQ(browser.lastRequest().target, nullptr);
    EXPECT_EQ(page.urlBuffer(), std::string(kService) + "?cmd=1&z=0");
    EXPECT_EQ(page.data(), "cmd=1");
    EXPECT_THAT(log.linesStarting("[sendToNevo]"),
                ElementsAre("[sendToNevo] call GetURLNotify, "
                            "buf='http://127.0.0.1:44444/vpn.php?cmd=1&z=0'\n"));
    EXPECT_THAT(
        log.linesStarting("[PluginInstance_URLNotify] respnse"),
        ElementsAre("[PluginInstance_URLNotify] respnse notify for (status) SJS ='cmd=1'\n"));
}

TEST_F(Relay, AnEmptyPageResultAsksForTheState) {
    launch(page);
    answer("x");
    answer("");
    EXPECT_EQ(last(), toService("INFO", 0));
    EXPECT_EQ(page.data(), "INFO");
}

TEST_F(Relay, APageThatReturnsNoTextAsksForTheStateToo) {
    launch(page);
    answer("x");
    answer("", {.streamReason = 1, .noticeReason = 1});
    EXPECT_EQ(last(), toService("INFO", 0));
    EXPECT_TRUE(log.contains("[PluginInstance_URLNotify] ERROR! Network Error.\n"));
    EXPECT_FALSE(log.contains("[GetDataFromNevo]"));
}

TEST_F(Relay, TheCounterStartsAtZeroAndGoesOn) {
    launch(page);
    for (int round = 0; round < 1000; ++round) {
        answer("answer");
        answer("command");
        ASSERT_EQ(last(), toService("command", round));
        forget();
    }
}

TEST_F(Relay, TwoInstancesShareTheCounter) {
    Embedding other(plugin);
    launch(page);
    const BrowserRequest first = browser.lastRequest();
    launch(other);
    const BrowserRequest second = browser.lastRequest();
    page.deliver(first, "a");
    const BrowserRequest firstCall = browser.lastRequest();
    other.deliver(second, "b");
    const BrowserRequest secondCall = browser.lastRequest();
    other.deliver(secondCall, "second");
    EXPECT_EQ(last(), toService("second", 0));
    page.deliver(firstCall, "first");
    EXPECT_EQ(last(), toService("first", 1));
    EXPECT_EQ(browser.lastRequest().instance, page.handle());
}

TEST_F(Relay, ARefusedServiceRequestIsLoggedAndItsCounterIsUsedUp) {
    launch(page);
    answer("x");
    const BrowserRequest call = browser.lastRequest();
    browser.answerRequest = [](int) -> NPError { return 3; };
    page.deliver(call, "c");
    EXPECT_THAT(log.linesStarting("[sendToNevo] ERROR!"),
                ElementsAre("[sendToNevo] ERROR! cannot call GetURL. "
                            "url='http://127.0.0.1:44444/vpn.php?c&z=0', errorcode='3'\n"));
    browser.answerRequest = [](int) -> NPError { return 0; };
    page.deliver(call, "d");
    EXPECT_EQ(last(), toService("d", 1));
}

TEST_F(Relay, ADuplicateNoticeIsHandledAgain) {
    launch(page);
    answer("x");
    const BrowserRequest call = browser.lastRequest();
    page.deliver(call, "c");
    page.notify(call, 0);
    EXPECT_THAT(summary(browser.requests),
                testing::IsSupersetOf({toService("c", 0), toService("c", 1)}));
}

TEST_F(Relay, AnInstanceThatDidNotStartTheServiceSkipsThePagesResult) {
    findRunning(page);
    answer("anything");
    EXPECT_EQ(browser.requests.size(), 1U);
    EXPECT_THAT(log.linesStarting("[sendToNevo]"),
                ElementsAre("[sendToNevo] Skip browser message!\n"));
}

TEST_F(Relay, AProbeEndsAfterThePagesFirstAnswer) {
    probe(page);
    answer("state=up");
    EXPECT_EQ(last(), toPage("state=up"));
    answer("ignored");
    EXPECT_EQ(browser.requests.size(), 2U);
    EXPECT_THAT(log.linesStarting("[sendToNevo]"),
                ElementsAre("[sendToNevo] It's probeVpn responce. Terminate work\n"));
}

TEST_F(Relay, TheNotInstalledCallIsNotAnswered) {
    installService("exit=2");
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    forget();
    answer("whatever");
    EXPECT_EQ(browser.requests.size(), 1U);
    EXPECT_TRUE(log.contains("[PluginInstance_Write] Unhandleed type = 1\n"));
    EXPECT_EQ(log.lines().back(),
              "[PluginInstance_URLNotify] response notify Unhandled type ='1'\n");
}

TEST_F(Relay, ANoticeIsTracedWithItsInstanceUrlReasonAndType) {
    launch(page);
    page.notify(browser.lastRequest(), 2);
    const auto low = static_cast<int>(reinterpret_cast<std::uintptr_t>(&page.record()));
    EXPECT_EQ(log.lines().at(0), "[PluginInstance_URLNotify] aPlugin=" + std::to_string(low) +
                                     ", url=http://127.0.0.1:44444/vpn.php?CONNECT, "
                                     "reason=2, type=3\n");
}

TEST_F(Relay, ANoticeWithoutARecordDoesNothingButALogLine) {
    launch(page);
    plugin.urlnotify(page.handle(), "http://here/", 0, nullptr);
    EXPECT_EQ(browser.requests.size(), 1U);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(Relay, AMissingUrlInANoticeDoesNoHarm) {
    launch(page);
    answer("x");
    const BrowserRequest call = browser.lastRequest();
    plugin.urlnotify(page.handle(), nullptr, 0, call.notifyData);
    EXPECT_EQ(last(), toService("x", 0));
}

// --- which step follows which notice ---

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

// --- a service that is gone ---

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

// --- the request past the browser ---

TEST_F(Relay, AFailedServiceRequestIsRepeatedPastTheBrowser) {
    ScriptedService service({.requestSize = 1000, .segments = {"HTTP/1.1 200 OK\r\n\r\nstate=up"}});
    launch(page);
    answer("", {.noticeReason = 1, .withStream = false});
    EXPECT_EQ(last(), toPage("state=up"));
    EXPECT_THAT(log.lines(),
                testing::IsSupersetOf(
                    {"[PluginInstance_URLNotify] ERROR! Network Error.\n", "[GetDataFromNevo]\n",
                     "[GetDataFromNevo] got reply: HTTP/1.1 200 OK\r\n\r\nstate=up\n",
                     "[PluginInstance_URLNotify] response notify for NEVO_HTTP ='state=up'\n"}));
}

// --- logging words ---

struct Words {
    const char* name;
    const char* answer;
    std::vector<std::string> levels;
};

class LoggingWords : public Relay, public testing::WithParamInterface<Words> {};

TEST_P(LoggingWords, InAServiceAnswerSetTheLevelOnceThePageHasSeenThem) {
    launch(page);
    answer(GetParam().answer);
    const auto levels = [this] {
        std::vector<std::string> found = log.events();
        std::erase_if(found, [](const std::string& e) { return e.rfind("<SetLogLevel", 0) != 0; });
        return found;
    };
    EXPECT_THAT(levels(), IsEmpty());
    answer("LOGGING_DISABLE in the page's own words means nothing");
    EXPECT_EQ(levels(), GetParam().levels);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, LoggingWords,
    testing::Values(Words{"Neither", "logging_disable LOGGING-ENABLE", {}},
                    Words{"Disable", "xLOGGING_DISABLEx", {"<SetLogLevel(31)>"}},
                    Words{"Enable", "LOGGING_ENABLE", {"<SetLogLevel(63)>"}},
                    Words{"EnabledAsFirst", "LOGGING_ENABLED", {"<SetLogLevel(63)>"}},
                    Words{"Both",
                          "LOGGING_ENABLE,LOGGING_DISABLE",
                          {"<SetLogLevel(31)>", "<SetLogLevel(63)>"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Relay, LoggingWordsAreIgnoredWhenThePagesResultIsSkipped) {
    probe(page);
    answer("LOGGING_DISABLE");
    answer("x");
    EXPECT_FALSE(log.contains("SetLogLevel"));
}

class LoggingSettings : public Relay {
  protected:
    const std::string m_home = std::getenv("HOME");
    const std::string m_file = m_home + "/Library/Zerva/zerva.conf";

    // A whole round in which the service answers `text`.
    void round(const char* text) {
        launch(page);
        answer(text);
        answer("");
    }
};

TEST_F(LoggingSettings, AreRewrittenForTheUserButNeverByRoot) {
    writeFile(m_file, "default_log_level=63\n");
    round("LOGGING_DISABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=63\n" : "default_log_level=31\n");
}

TEST_F(LoggingSettings, AreRewrittenWithoutALogObjectToo) {
    removeLog();
    writeFile(m_file, "default_log_level=31\n");
    round("LOGGING_ENABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=31\n" : "default_log_level=63\n");
}

TEST_F(LoggingSettings, EnableWinsOverDisable) {
    writeFile(m_file, "default_log_level=15\n");
    round("LOGGING_ENABLE LOGGING_DISABLE");
    EXPECT_EQ(readFile(m_file),
              sandboxUserIsRoot() ? "default_log_level=15\n" : "default_log_level=63\n");
}

// --- pages that go away ---

TEST_F(Relay, LateCallbacksOfADestroyedInstanceDoNothing) {
    launch(page);
    const BrowserRequest connect = browser.lastRequest();
    page.deliverStream(connect, "half");
    page.destroy();
    browser.calls.clear();
    log.clear();

    NPStream stream{};
    stream.url = connect.url.c_str();
    stream.notifyData = connect.notifyData;
    char bytes[] = "more";
    EXPECT_EQ(plugin.writeready(page.handle(), &stream), 268435455);
    EXPECT_EQ(plugin.write(page.handle(), &stream, 0, 4, bytes), 4);
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 0), 1);
    page.notify(connect, 0);
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_THAT(log.events(), IsEmpty());
}

TEST_F(Relay, OneInstanceGoesOnWhenAnotherIsDestroyed) {
    Embedding other(plugin);
    launch(page);
    const BrowserRequest connect = browser.lastRequest();
    ASSERT_EQ(other.create(), 0);
    other.destroy();
    EXPECT_EQ(notifyType(connect), 3);
    page.deliver(connect, "x");
    EXPECT_EQ(last(), toPage("x"));
    answer("c");
    EXPECT_EQ(last(), toService("c", 0));
}

TEST_F(Relay, APageThatGoesStopsTheServiceOnlyIfItStartedIt) {
    launch(page);
    answer("x");
    page.destroy();
    EXPECT_EQ(log.linesStarting("[LaunchVPN] ('x', '1')").size(), 1U);

    Embedding second(plugin);
    findRunning(second);
    answer("x");
    log.clear();
    second.destroy();
    EXPECT_TRUE(log.linesStarting("[LaunchVPN]").empty());
}

// --- browsers that call back from inside a request ---

class ReentrantBrowser : public Relay {};

TEST_F(ReentrantBrowser, MayAnswerFromInsideTheRequest) {
    launch(page);
    int left = 100;
    browser.insideRequest = [&](const BrowserRequest& request) {
        if (--left > 0) page.deliver(request, "text" + std::to_string(left));
    };
    answer("start");
    EXPECT_EQ(left, 0);
    ASSERT_EQ(browser.requests.size(), 101U);
    for (std::size_t i = 1; i < browser.requests.size(); i += 2) {
        const std::string answered = i == 1 ? "start" : "text" + std::to_string(101 - i);
        EXPECT_EQ(summary(browser.requests)[i], toPage(answered));
        if (i + 1 < browser.requests.size()) {
            EXPECT_EQ(summary(browser.requests)[i + 1],
                      toService("text" + std::to_string(100 - i), static_cast<int>(i / 2)));
        }
    }
}

TEST_F(ReentrantBrowser, ThatAnswersDuringCreationMeetsNoInstance) {
    installService("exit=0");
    browser.insideRequest = [&](const BrowserRequest& request) { page.deliver(request, "early"); };
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_EQ(browser.requests.size(), 1U);
    EXPECT_EQ(page.data(), "");
}

TEST_F(ReentrantBrowser, MayDestroyTheInstanceInsideAPageCall) {
    launch(page);
    browser.insideRequest = [&](const BrowserRequest&) { page.destroy(); };
    answer("x");
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(last(), toPage("x"));
}

TEST_F(ReentrantBrowser, MayDestroyTheInstanceInsideAServiceRequest) {
    launch(page);
    answer("x");
    browser.insideRequest = [&](const BrowserRequest&) { page.destroy(); };
    answer("c");
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(last(), toService("c", 0));
}

TEST_F(ReentrantBrowser, MayDestroyTheInstanceInsideADropNotice) {
    launch(page);
    browser.insideRequest = [&](const BrowserRequest&) { page.destroy(); };
    answer("", {.noticeReason = 1, .withStream = false});
    EXPECT_FALSE(page.isAlive());
    EXPECT_EQ(last(), kDrop);
}

TEST_F(ReentrantBrowser, MayDestroyAndRefuse) {
    launch(page);
    browser.answerRequest = [&](int) -> NPError {
        page.destroy();
        return 1;
    };
    answer("x");
    EXPECT_FALSE(page.isAlive());
    EXPECT_TRUE(log.contains("[sendToJavaScript] ERROR! cannot call GetURL."));
}

TEST_F(ReentrantBrowser, ThatDestroysDuringCreationMeetsNoInstance) {
    installService("exit=0");
    browser.insideRequest = [&](const BrowserRequest&) { page.destroy(); };
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_TRUE(page.isAlive());
}

}  // namespace
