#include "relay_fixture.h"
#include "scripted_service.h"

// The conversation between page and service: what goes to whom, to the letter.

namespace {

using testing::ElementsAre;

// Service to page.

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

// Page to service.

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

// The request past the browser.

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

}  // namespace
