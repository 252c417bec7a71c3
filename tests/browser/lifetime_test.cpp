#include <malloc.h>

#include <filesystem>
#include <functional>
#include <iterator>

#include "browser_test.h"

// What happens when pages come and go.

namespace {

constexpr int kWarmUp = 50;
constexpr int kRounds = 200;
constexpr int kAnswer = 4000;

// A page with an element that does nothing; come() adds one with its attributes and these, go()
// takes that one out.
std::string comingAndGoing(const std::string& reply, const std::string& name) {
    return casePage(reply, "title=idle") + R"html(<script>
var idle = document.getElementById('plug-in'), plugIn;
function come() {
  plugIn = idle.cloneNode();
  plugIn.setAttribute(')html" +
           name + R"html(', 1);
  document.body.appendChild(plugIn);
  document.body.offsetHeight;
}
function go() { document.body.removeChild(plugIn); plugIn = null; }
</script>)html";
}

struct Growth {
    long heap;  ///< bytes in use
    long descriptors;
};

long descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

/// What the rounds after the first ones add.
Growth growthOf(Stage& stage, const std::function<void(int)>& round) {
    long heap = 0;
    long open = 0;
    for (int number = 0; number < kWarmUp + kRounds; ++number) {
        if (number == kWarmUp) {
            stage.settle();
            heap = static_cast<long>(mallinfo2().uordblks);
            open = descriptors();
        }
        round(number);
        stage.conversation().forget();
    }
    stage.settle();
    return {static_cast<long>(mallinfo2().uordblks) - heap, descriptors() - open};
}

// The engine itself loses about 70 bytes with each element, and opens and closes a few descriptors
// as it likes; what a plug-in lost each time would be far beyond.
constexpr long kEnginesHeap = kRounds * 300;
constexpr long kEnginesDescriptors = 10;

}  // namespace

TEST_F(BrowserTest, LeavingInMidConversationStopsTheService) {
    stage.rules({"CONNECT say on", "MORE say on"});
    Page& page = stage.openCase(casePage("return 'MORE';"));
    expectLaunch(talk);
    talk.skipTo("plug-in -> service: ?MORE&z=20");
    page.leave();
    talk.skipTo("plug-in -> service: signal 15");
    stage.expectServiceGone();
}

TEST_F(BrowserTest, LeavingWhileTheServiceIsSilentStopsTheService) {
    stage.rules({"CONNECT hold"});
    Page& page = stage.openCase(casePage("return 'MORE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (no answer)"});
    page.leave();
    talk.skipTo("plug-in -> service: signal 15");
    stage.expectServiceGone();
}

TEST_F(BrowserTest, LeavingInMidAnswerStopsTheService) {
    stage.rules({"CONNECT stall 5000"});
    Page& page = stage.openCase(casePage("return 'MORE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (stops after 5000 of 100000 bytes)"});
    page.leave();
    talk.skipTo("plug-in -> service: signal 15");
    stage.expectServiceGone();
}

TEST_F(BrowserTest, RemovingTheElementStopsTheServiceAtOnce) {
    stage.rules({"CONNECT hold"});
    Page& page = stage.openCase(casePage("return 'MORE';"));
    expectLaunch(talk);
    talk.expect({"service -> plug-in: (no answer)"});
    page.run("document.getElementById('plug-in').remove()");
    talk.expect({"plug-in -> service: signal 15"});
    stage.expectServiceGone();
    talk.expectNothingMore();
}

TEST_F(BrowserTest, LeavingAfterAProbeLeavesTheServiceAlone) {
    stage.startService();
    Page& page = stage.openCase(casePage("return 'MORE';", "_probevpn=1 last_param=1"));
    talk.skipTo("page -> plug-in: MORE");
    page.leave();
    talk.expect({"user -> page: leaves it"});
    stage.settle();
    talk.expectNothingMore();
    stage.expectServiceRuns();
}

TEST_F(BrowserTest, ElementWithoutMarkersDoesNothing) {
    Page& page = stage.openCase(casePage("return 'MORE';", "user='ada'"));
    talk.expect({"user -> page: opens it"});
    stage.settle();
    talk.expectNothingMore();
    EXPECT_EQ("boolean", page.run("typeof document.getElementById('plug-in').info").toString());
}

// Reading `info` keeps its object and the property's name for good, on purpose.
constexpr long kKeptByReading = kRounds * 300;

TEST_F(BrowserTest, ComingAndGoingTwoHundredTimesKeepsNothingElse) {
    Page& page = stage.openCase(comingAndGoing("return 'DONE';", "user"));
    const Growth growth = growthOf(stage, [&](int) {
        // Nobody answers, so `info` is false; without an instance it would be undefined.
        page.run("come()");
        ASSERT_TRUE(waitUntil([&] { return page.run("typeof plugIn.info") == "boolean"; }));
        page.run("go()");
    });
    EXPECT_LT(growth.heap, kEnginesHeap + kKeptByReading);
    EXPECT_LT(growth.descriptors, kEnginesDescriptors);
}

// Each answer is longer than what the engine loses in a round, so that one kept would show.
TEST_F(BrowserTest, TwoHundredConversationsKeepNoAnswer) {
    stage.rules({"CONNECT fill " + std::to_string(kAnswer)});
    Page& page = stage.openCase(comingAndGoing(
        "if (text !== 'ssldrop') stage.killService(); return 'DONE';", "last_param"));
    const Growth growth = growthOf(stage, [&](int) {
        page.run("come()");
        talk.skipTo(pageHears(digits(kAnswer)));
        talk.skipTo(pageHears("ssldrop"));
        page.run("go()");
    });
    EXPECT_LT(growth.heap, kRounds * kAnswer / 2);
    EXPECT_LT(growth.descriptors, kEnginesDescriptors);
}

// Heap is not compared: the engine loses some kilobytes with each request that it breaks off.
TEST_F(BrowserTest, GoingTwoHundredTimesInMidRequestKeepsNoDescriptor) {
    stage.rules({"CONNECT say hello", "DONE hold"});
    Page& page = stage.openCase(comingAndGoing("return 'DONE';", "last_param"));
    const Growth growth = growthOf(stage, [&](int number) {
        page.run("come()");
        talk.skipTo("plug-in -> service: ?DONE&z=" + std::to_string(number));
        page.run("go()");
        talk.skipTo("plug-in -> service: signal 15");
        stage.expectServiceGone();
    });
    EXPECT_LT(growth.descriptors, kEnginesDescriptors);
}

TEST_F(BrowserTest, EachFailedDirectRequestKeepsOneDescriptor) {
    stage.rules({"launch refuse 1"});
    Page& page = stage.openCase(comingAndGoing("return 'DONE';", "last_param"));
    const Growth growth = growthOf(stage, [&](int) {
        page.run("come()");
        talk.skipTo(pageHears("ssldrop"));
        page.run("go()");
    });
    EXPECT_GT(growth.descriptors, kRounds - kEnginesDescriptors);
    EXPECT_LT(growth.descriptors, kRounds + kEnginesDescriptors);
    EXPECT_LT(growth.heap, kEnginesHeap);
}
