#include "browser_test.h"

// What the service is asked for the page's replies.

struct ReplyRow {
    const char* name;
    const char* reply;  ///< the body of the page's function
    const char* given;  ///< what the page says it gave back
    const char* asked;  ///< the next request
};

void PrintTo(const ReplyRow& row, std::ostream* out) { *out << row.name; }

class PageReply : public BrowserTest, public testing::WithParamInterface<ReplyRow> {};

TEST_P(PageReply, IsTheNextRequest) {
    stage.rules({"CONNECT say hello", "INFO hold", "MORE hold", "7 hold", "a,b;c hold"});
    stage.openCase(casePage(GetParam().reply));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: hello", pageHears("hello"),
                 std::string("page -> plug-in: ") + GetParam().given,
                 std::string("plug-in -> service: ") + GetParam().asked,
                 "service -> plug-in: (no answer)"});
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PageReply,
    testing::Values(ReplyRow{"text", "return 'MORE';", "MORE", "?MORE&z=0"},
                    ReplyRow{"text_is_not_encoded", "return 'a,b;c';", "a,b;c", "?a,b;c&z=0"},
                    ReplyRow{"digits", "return '7';", "7", "?7&z=0"},
                    ReplyRow{"empty_text_asks_info", "return '';", "", "?INFO&z=0"},
                    ReplyRow{"nothing_asks_info", "", "(undefined)", "?INFO&z=0"},
                    ReplyRow{"number_asks_info", "return 7;", "(number)", "?INFO&z=0"},
                    ReplyRow{"boolean_asks_info", "return true;", "(boolean)", "?INFO&z=0"},
                    ReplyRow{"object_asks_info", "return {};", "(object)", "?INFO&z=0"}),
    rowName<ReplyRow>);

TEST_F(BrowserTest, PageFunctionThatThrowsAsksInfo) {
    stage.rules({"CONNECT say hello", "INFO hold"});
    stage.openCase(casePage("throw new Error('not today');"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: hello", pageHears("hello"), "page -> plug-in: (throws)",
                 "page -> console: Error: not today", "plug-in -> service: ?INFO&z=0",
                 "service -> plug-in: (no answer)"});
}

TEST_F(BrowserTest, PageWithoutTheFunctionAsksInfo) {
    stage.rules({"CONNECT say hello", "INFO hold"});
    stage.openCase(casePage("") + "<script>c_addcomm = undefined;</script>");
    expectLaunch(talk);
    talk.expect({"service -> plug-in: hello", "page -> console: TypeError: *",
                 "plug-in -> service: ?INFO&z=0", "service -> plug-in: (no answer)"});
}

class ReplyOfSize : public BrowserTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(ReplyOfSize, ReachesTheServiceWhole) {
    stage.rules({"CONNECT say hello", digits(GetParam()) + " hold"});
    stage.openCase(casePage("return Array(" + std::to_string(GetParam() / 10 + 2) +
                            ").join('0123456789').substr(0, " + std::to_string(GetParam()) + ");"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: hello", pageHears("hello"),
                 "page -> plug-in: " + gist(digits(GetParam())),
                 "plug-in -> service: ?" + gist(digits(GetParam()) + "&z=0"),
                 "service -> plug-in: (no answer)"});
}

INSTANTIATE_TEST_SUITE_P(Bytes, ReplyOfSize, testing::Values(1, 64000, 64001, 1 << 20));

TEST_F(BrowserTest, RequestsAreCountedFromZero) {
    stage.rules({"MORE say on", "CONNECT say on", "END hold"});
    stage.openCase(casePage("return round < 3 ? 'MORE' : 'END';"));
    expectLaunch(talk);
    for (const char* asked : {"?MORE&z=0", "?MORE&z=1", "?MORE&z=2"}) {
        talk.expect({"service -> plug-in: on", pageHears("on"), "page -> plug-in: MORE",
                     std::string("plug-in -> service: ") + asked});
    }
    talk.expect({"service -> plug-in: on", pageHears("on"), "page -> plug-in: END",
                 "plug-in -> service: ?END&z=3", "service -> plug-in: (no answer)"});
}

TEST_F(BrowserTest, PageParametersAreTheServicesInput) {
    stage.rules({"CONNECT hold"});
    stage.openCase(casePage("",
                            "user='a b' x='1&amp;2' _userpassword='secret' hostrooturl='h' "
                            "signature='s' nevourl='n' nevosize='9' last_param='1'"));
    talk.expect({"user -> page: opens it",
                 "plug-in -> service: launch type=application/x-zerva-sslvpn&id=plug-in&width=1&"
                 "height=1&user=a b&x=1&2&browser_pid=" +
                     std::to_string(getpid()) + "&",
                 "service -> plug-in: exit status 0", "plug-in -> service: ?CONNECT",
                 "service -> plug-in: (no answer)"});
}
