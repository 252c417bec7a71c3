#include <cstdlib>
#include <fstream>
#include <iterator>

#include "browser_test.h"

// The sample portal page's buttons.

namespace {

std::string settingsFile() {
    std::ifstream file(std::string(std::getenv("HOME")) + "/Library/Zerva/zerva.conf");
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST_F(BrowserTest, PortalButtonsConnectAndDisconnect) {
    Page& page = stage.openPortal("");
    page.press("connect");
    talk.skipTo("page -> user: Connected");
    page.press("disconnect");
    talk.skipTo("plug-in -> service: ?DISCONNECT&z=*");
    talk.skipTo(pageHears("&sslsetstatus,v1,disconnected,0"));
    talk.skipTo("page -> user: Disconnected");
    stage.expectServiceStopped();
}

TEST_F(BrowserTest, PortalConnectsAgainAfterADisconnect) {
    Page& page = stage.openPortal("?connect");
    talk.skipTo("page -> user: Connected");
    page.press("disconnect");
    talk.skipTo("page -> user: Disconnected");
    stage.expectServiceStopped();
    talk.forget();
    page.press("connect");
    talk.skipTo("page -> user: Connected");
    page.leave();
    stage.expectServiceStopped();
}

TEST_F(BrowserTest, PortalProbeButtonAsksTheService) {
    stage.startService();
    Page& page = stage.openPortal("");
    page.press("probe");
    talk.skipTo("plug-in -> service: ?INFO");
    talk.skipTo("page -> user: Service is there");
}

TEST_F(BrowserTest, ServicesLoggingWordsSetTheLevelInTheSettingsFile) {
    Page& page = stage.openPortal("?connect");
    talk.skipTo("page -> user: Connected");
    page.press("logging-off");
    talk.skipTo("page -> plug-in: LOGGING,0");
    talk.skipTo(pageHears("LOGGING_DISABLE"));
    talk.skipTo("plug-in -> service: ?*");
    EXPECT_NE(std::string::npos, settingsFile().find("default_log_level=31"));
    page.press("logging-on");
    talk.skipTo("page -> plug-in: LOGGING,1");
    talk.skipTo(pageHears("LOGGING_ENABLE"));
    talk.skipTo("plug-in -> service: ?*");
    EXPECT_NE(std::string::npos, settingsFile().find("default_log_level=63"));
}
