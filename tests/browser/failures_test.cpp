#include "browser_test.h"

// What the page gets when the service fails.

namespace {

const char* const kDirectInfo = "plug-in -> service: ?INFO (own socket, 934 zero bytes behind)";

}  // namespace

struct FailureRow {
    const char* name;
    const char* rule;  ///< how CONNECT fails
};

void PrintTo(const FailureRow& row, std::ostream* out) { *out << row.name; }

class FailedRequest : public BrowserTest, public testing::WithParamInterface<FailureRow> {};

TEST_P(FailedRequest, IsReplacedByADirectInfoRequest) {
    stage.rules({std::string("CONNECT ") + GetParam().rule, "own:INFO say instead", "DONE hold"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.skipTo(kDirectInfo);
    talk.expect({"service -> plug-in: instead", pageHears("instead"), "page -> plug-in: DONE",
                 "plug-in -> service: ?DONE&z=0", "service -> plug-in: (no answer)"});
}

INSTANTIATE_TEST_SUITE_P(Of, FailedRequest,
                         testing::Values(FailureRow{"http_status_500", "status 500"},
                                         FailureRow{"http_status_404", "status 404"},
                                         FailureRow{"closed_without_an_answer", "hang-up"},
                                         FailureRow{"closed_in_mid_answer", "cut 5000"},
                                         FailureRow{
                                             "no_blank_line",
                                             "raw HTTP/1.1 200 OK%0D%0AContent-Length: 2%0D%0A"}),
                         rowName<FailureRow>);

TEST_F(BrowserTest, ServiceThatEndsInMidRequestDropsTheConnection) {
    stage.rules({"CONNECT die"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (ends without an answer)", pageHears("ssldrop"),
                 "page -> plug-in: DONE"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ServiceThatEndsBetweenTwoRequestsDropsTheConnection) {
    stage.rules({"CONNECT say hello"});
    stage.openCase(casePage("if (round === 0) stage.killService(); return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: hello", pageHears("hello"), "page -> plug-in: DONE",
                 pageHears("ssldrop"), "page -> plug-in: DONE"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ServiceThatEndsAfterItsAnswerDropsTheConnection) {
    stage.rules({"CONNECT last-words bye"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: bye", pageHears("bye"), "page -> plug-in: DONE",
                 pageHears("ssldrop"), "page -> plug-in: DONE"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ProbeWithoutAServiceDropsTheConnection) {
    stage.openCase(casePage("return 'DONE';", "_probevpn=1"));
    talk.expect({"user -> page: opens it", pageHears("ssldrop"), "page -> plug-in: DONE"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ServiceMissingFromTheBundleCountsAsStarted) {
    stage.removeService();
    stage.openCase(casePage("return 'DONE';"));
    talk.expect({"user -> page: opens it", pageHears("ssldrop"), "page -> plug-in: DONE"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ServiceThatEndsWithStatusTwoIsNotInstalled) {
    stage.rules({"launch refuse 2"});
    stage.openCase(casePage("return 'DONE';"));
    talk.expect({"user -> page: opens it", "plug-in -> service: launch *",
                 "service -> plug-in: exit status 2", "plug-in -> page: VPNNotInstalled()"});
    stage.settle();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, ServiceThatEndsWithStatusOneWithoutRunningDropsTheConnection) {
    stage.rules({"launch refuse 1"});
    stage.openCase(casePage("return 'DONE';"));
    talk.expect({"user -> page: opens it", "plug-in -> service: launch *",
                 "service -> plug-in: exit status 1", pageHears("ssldrop"),
                 "page -> plug-in: DONE"});
}

TEST_F(BrowserTest, ServiceThatEndsWithStatusOneAndRunsIsStarted) {
    stage.rules({"launch status 1", "CONNECT say hello", "DONE hold"});
    stage.openCase(casePage("return 'DONE';"));
    talk.expect({"user -> page: opens it", "plug-in -> service: launch *",
                 "service -> plug-in: exit status 1", "plug-in -> service: ?CONNECT",
                 "service -> plug-in: hello", pageHears("hello"), "page -> plug-in: DONE",
                 "plug-in -> service: ?DONE&z=0", "service -> plug-in: (no answer)"});
}

TEST_F(BrowserTest, ServiceKilledAtItsStartLeavesThePageWithoutPlugIn) {
    stage.rules({"launch kill 9"});
    Page& page = stage.openCase(casePage("return 'DONE';"));
    talk.expect({"user -> page: opens it", "plug-in -> service: launch *"});
    stage.settle();
    talk.expectNothingMore();
    EXPECT_EQ("undefined", page.run("typeof document.getElementById('plug-in').info").toString());
}

TEST_F(BrowserTest, ServiceThatDoesNotReadItsInputDoesNotHarmTheBrowser) {
    stage.rules({"launch ignore-input", "CONNECT say hello", "DONE hold"});
    stage.openCase(
        casePage("return 'DONE';", "last_param=1 big='" + std::string(200000, 'x') + "'"));
    talk.expect({"user -> page: opens it", "plug-in -> service: launch (input not read)",
                 "service -> plug-in: exit status 0", "plug-in -> service: ?CONNECT",
                 "service -> plug-in: hello", pageHears("hello")});
}

TEST_F(BrowserTest, InfoIsTheBodyOfTheServicesAnswer) {
    stage.rules({"CONNECT hold", "own:INFO&JS say up and running"});
    Page& page = stage.openCase(casePage(""));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (no answer)"});
    EXPECT_EQ("up and running", page.run("document.getElementById('plug-in').info").toString());
    talk.expect({"plug-in -> service: ?INFO&JS (own socket, 1 zero bytes behind)",
                 "service -> plug-in: up and running"});
}

class InfoFailure : public BrowserTest, public testing::WithParamInterface<FailureRow> {};

TEST_P(InfoFailure, ReadsAsFalse) {
    stage.rules({"CONNECT hold", std::string("own:INFO&JS ") + GetParam().rule});
    Page& page = stage.openCase(casePage(""));
    expectLaunch(talk);
    EXPECT_EQ("boolean false", page.run("var info = document.getElementById('plug-in').info;"
                                        "typeof info + ' ' + info")
                                   .toString());
}

INSTANTIATE_TEST_SUITE_P(Of, InfoFailure,
                         testing::Values(FailureRow{"closed_without_an_answer", "hang-up"},
                                         FailureRow{"no_blank_line", "raw HTTP/1.1 200 OK%0D%0A"},
                                         FailureRow{"service_ends", "die"}),
                         rowName<FailureRow>);

TEST_F(BrowserTest, NoOtherPropertyExists) {
    stage.rules({"CONNECT hold"});
    Page& page = stage.openCase(casePage(""));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (no answer)"});
    EXPECT_EQ("undefined undefined undefined",
              page.run("var plugIn = document.getElementById('plug-in');"
                       "typeof plugIn.Info + ' ' + typeof plugIn.inf + ' ' + typeof plugIn.info2")
                  .toString());
    stage.settle();
    talk.expectNothingMore();
}
