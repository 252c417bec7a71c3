#include <sys/resource.h>
#include <unistd.h>

#include "child_process.h"
#include "notify_data.h"
#include "plugin_test.h"
#include "scripted_service.h"

// The request that the plug-in makes past the browser when a service request has failed.

namespace {

using testing::ElementsAre;

// What goes out on the wire: the request and zeros up to a thousand bytes.
std::string directRequest() {
    std::string block =
        "GET /vpn.php?INFO HTTP/1.1\r\nHOST: 127.0.0.1:44444\r\nAccept: */*\r\n\r\n";
    EXPECT_EQ(block.size(), 66U);
    block.resize(1000, '\0');
    return block;
}

class DirectRequest : public PluginTest {
  protected:
    DirectRequest() {
        EXPECT_EQ(page.create(), 0);
        notify.type = 3;
        page.deliverStream({page.handle(), "http://here/", nullptr, &notify, true},
                           "the last command");
        log.clear();
    }

    // The browser's notice of a failed service request. @return what the page hears.
    std::string fail() {
        plugin.urlnotify(page.handle(), "http://127.0.0.1:44444/vpn.php?CONNECT", 1, &notify);
        return summary(browser.requests).back();
    }

    // How many descriptors have come to stay since the test began; ask with no service around.
    int descriptorsLeft() const { return openDescriptors() - m_firstDescriptor; }

    Embedding page{plugin};
    streamData notify{};

  private:
    int m_firstDescriptor = openDescriptors();
};

constexpr char kDrop[] = "- javascript:c_addcomm('ssldrop')";

std::string toPage(const std::string& answer) { return "2 javascript:c_addcomm('" + answer + "')"; }

TEST_F(DirectRequest, BringsTheServicesStateToThePage) {
    ScriptedService service({.requestSize = 1000, .segments = {"HTTP/1.1 200 OK\r\n\r\nstate=up"}});
    EXPECT_EQ(fail(), toPage("state=up"));
    EXPECT_EQ(page.data(), "state=up");
    EXPECT_THAT(service.requests(), ElementsAre(directRequest()));
    EXPECT_EQ(descriptorsLeft(), 0);
    EXPECT_THAT(log.linesStarting("[GetDataFromNevo]"),
                ElementsAre("[GetDataFromNevo]\n",
                            "[GetDataFromNevo] got reply: HTTP/1.1 200 OK\r\n\r\nstate=up\n"));
}

TEST_F(DirectRequest, LeavesItsSocketOpenWhenNobodyListens) {
    EXPECT_EQ(fail(), kDrop);
    EXPECT_EQ(descriptorsLeft(), 1);
    EXPECT_EQ(page.data(), "the last command");
    EXPECT_THAT(log.linesStarting("[GetDataFromNevo]"),
                ElementsAre("[GetDataFromNevo]\n",
                            "[GetDataFromNevo] connect() failed=Connection refused\n"));
}

TEST_F(DirectRequest, LeavesItsSocketOpenWhenTheServiceClosesWithoutAnAnswer) {
    ScriptedService service({.requestSize = 1000, .waitsForPeer = false});
    EXPECT_EQ(fail(), kDrop);
    service.requests();
    EXPECT_EQ(descriptorsLeft(), 1);
    EXPECT_EQ(page.data(), "the last command");
    const std::vector<std::string> lines = log.linesStarting("[GetDataFromNevo] read() failed=");
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(DirectRequest, LeavesItsSocketOpenWhenTheServiceResetsTheConnection) {
    ScriptedService service({.requestSize = 1000, .resets = true});
    EXPECT_EQ(fail(), kDrop);
    EXPECT_THAT(log.linesStarting("[GetDataFromNevo] read()"),
                ElementsAre("[GetDataFromNevo] read() failed=Connection reset by peer\n"));
}

struct Answer {
    const char* name;
    std::string text;
    std::string body;
};

class DirectAnswer : public DirectRequest, public testing::WithParamInterface<Answer> {};

TEST_P(DirectAnswer, GivesTheBodyOfTheFirstThousandBytes) {
    ScriptedService service({.requestSize = 1000, .segments = {GetParam().text}});
    EXPECT_EQ(fail(), toPage(GetParam().body));
    EXPECT_EQ(page.data(), GetParam().body);
    service.requests();
    EXPECT_EQ(descriptorsLeft(), 0);
}

std::string bytes(std::size_t count) { return std::string(count, 'x'); }

INSTANTIATE_TEST_SUITE_P(
    Answers, DirectAnswer,
    testing::Values(Answer{"HeaderOnly", "HTTP/1.1 200 OK\r\n\r\n", ""},
                    Answer{"BlankLineAtTheStart", "\r\n\r\nbody", "body"},
                    Answer{"NoBlankLine", "HTTP/1.1 200 OK\r\nbody", ""},
                    Answer{"LineFeedsOnly", "HTTP/1.1 200 OK\n\nbody", ""},
                    Answer{"StatusIsNotLookedAt", "HTTP/1.1 500 Oops\r\n\r\nbody", "body"},
                    Answer{"Length999", "h\r\n\r\n" + bytes(994), bytes(994)},
                    Answer{"Length1000", "h\r\n\r\n" + bytes(995), bytes(995)},
                    Answer{"Length1001", "h\r\n\r\n" + bytes(996), bytes(995)},
                    Answer{"Length5000", "h\r\n\r\n" + bytes(4995), bytes(995)},
                    Answer{"BlankLineEndsAt1000", bytes(996) + "\r\n\r\nbody", ""},
                    Answer{"BlankLineCutAt1000", bytes(997) + "\r\n\r\nbody", ""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(DirectRequest, OnlyWhatTheFirstReadBringsCounts) {
    ScriptedService service({.requestSize = 1000, .segments = {"HTTP/1.1 200 OK\r\n\r\n", "body"}});
    EXPECT_EQ(fail(), toPage(""));
}

TEST_F(DirectRequest, RunsOutOfDescriptorsWithoutHarm) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few = {64, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const int firstFree = dup(0);
    close(firstFree);
    int drops = 0;
    for (int i = 0; i < 1000; ++i) drops += fail() == kDrop ? 1 : 0;
    setrlimit(RLIMIT_NOFILE, &before);
    close_range(static_cast<unsigned>(firstFree), 63, 0);
    EXPECT_EQ(drops, 1000);
    EXPECT_TRUE(log.contains("[GetDataFromNevo] socket() failed=Too many open files\n"));
    EXPECT_EQ(fail(), kDrop);
}

}  // namespace
