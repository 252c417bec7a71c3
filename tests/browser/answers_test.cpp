#include "browser_test.h"

// What the page gets of the service's answers.

class AnswerOfSize : public BrowserTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(AnswerOfSize, ReachesThePageWhole) {
    stage.rules({"CONNECT fill " + std::to_string(GetParam()), "DONE hold"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: " + gist(digits(GetParam())), pageHears(digits(GetParam())),
                 "page -> plug-in: DONE", "plug-in -> service: ?DONE&z=0",
                 "service -> plug-in: (no answer)"});
}

INSTANTIATE_TEST_SUITE_P(Bytes, AnswerOfSize,
                         testing::Values(0, 1, 8128, 8129, 64000, 64001, 8 << 20, 10 << 20));

struct AnswerRow {
    const char* name;
    const char* answer;  ///< with %XX as in a rule
    const char* heard;   ///< what c_addcomm gets
};

void PrintTo(const AnswerRow& row, std::ostream* out) { *out << row.name; }

class AnswerText : public BrowserTest, public testing::WithParamInterface<AnswerRow> {};

TEST_P(AnswerText, IsPutIntoTheScriptAsItIs) {
    stage.rules({std::string("CONNECT say ") + GetParam().answer, "DONE hold"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.skipTo(pageHears(GetParam().heard));
    talk.expect({"page -> plug-in: DONE", "plug-in -> service: ?DONE&z=0",
                 "service -> plug-in: (no answer)"});
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AnswerText,
    testing::Values(
        AnswerRow{"backslash_is_the_scripts_escape", "a\\x41\\\\b", "aA\\b"},
        AnswerRow{"line_break_vanishes_in_the_engines_url", "a%0D%0Ab", "ab"},
        AnswerRow{"quote_that_closes_the_text_runs_as_script", "a'+'b", "ab"},
        AnswerRow{"head_before_a_blank_line_is_removed", "X: 1%0D%0A%0D%0Abody", "body"},
        AnswerRow{"only_the_first_head_is_removed", "a%0D%0A%0D%0Ab%0D%0A%0D%0Ac", "bc"},
        AnswerRow{"blank_line_at_the_start_is_kept", "%0D%0A%0D%0Abody", "body"}),
    rowName<AnswerRow>);

TEST_F(BrowserTest, AnswerWithASingleQuoteNeverReachesThePage) {
    stage.rules({"CONNECT say it's", "INFO hold"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: it's", "page -> console: SyntaxError: *",
                 "plug-in -> service: ?INFO&z=0", "service -> plug-in: (no answer)"});
}

TEST_F(BrowserTest, SlowAnswerIsWaitedFor) {
    stage.rules({"CONNECT delay 300", "DONE hold"});
    stage.openCase(casePage("return 'DONE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: &sslsetstatus,v1,connecting,0",
                 pageHears("&sslsetstatus,v1,connecting,0"), "page -> plug-in: DONE",
                 "plug-in -> service: ?DONE&z=0", "service -> plug-in: (no answer)"});
}
