#include "relay_fixture.h"

// Instances that go away, and browsers that call back from inside a request.

namespace {

using testing::IsEmpty;

// Pages that go away.

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

// Browsers that call back from inside a request.

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
