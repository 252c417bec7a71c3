#include "host/scenarios.h"

#include "host/stage.h"

namespace {

void connect(Stage& stage) {
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo("plug-in -> service: launch *&browser_pid=*&");
    stage.conversation().expect({
        "service -> plug-in: exit status 0",
        "plug-in -> service: ?CONNECT",
        "service -> plug-in: &sslsetstatus,v1,connecting,0",
        "plug-in -> page: c_addcomm('&sslsetstatus,v1,connecting,0')",
        "page -> plug-in: STATUS",
        "plug-in -> service: ?STATUS&z=0",
        "service -> plug-in: &sslsetstatus,v1,connected,0",
        "plug-in -> page: c_addcomm('&sslsetstatus,v1,connected,0')",
        "page -> user: Connected",
        "page -> plug-in: TRAFFIC",
    });
    stage.conversation().skipTo("page -> plug-in: WAIT");
    stage.show(page);
    page.leave();
    stage.expectServiceStopped();
}

void probe(Stage& stage) {
    stage.startService();
    Page& page = stage.openPortal("?probe");
    stage.conversation().skipTo("plug-in -> service: ?INFO");
    stage.conversation().expect({
        "service -> plug-in: &sslinfo,v1,idle,10.8.0.17,255.255.255.0",
        "plug-in -> page: c_addcomm('&sslinfo,v1,idle,10.8.0.17,255.255.255.0')",
        "page -> user: Service is there",
        "page -> plug-in: TRAFFIC",
    });
    stage.settle();
    stage.conversation().expectNothingMore();
    stage.show(page);
    page.leave();
    stage.expectServiceRuns();
}

void alreadyRunning(Stage& stage) {
    stage.startService();
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo(
        "plug-in -> page: c_addcomm('&sslsetstatus,v1,disconnectedwitherror,1')");
    stage.conversation().expect({"page -> user: Already in use", "page -> plug-in: INFO"});
    stage.settle();
    stage.conversation().expectNothingMore();
    stage.show(page);
    page.leave();
    stage.expectServiceRuns();
}

void notInstalled(Stage& stage) {
    stage.rules({"launch refuse 2"});
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo("service -> plug-in: exit status 2");
    stage.conversation().skipTo("plug-in -> page: VPNNotInstalled()");
    stage.conversation().expect({"page -> user: Not installed"});
    stage.settle();
    stage.conversation().expectNothingMore();
    stage.show(page);
    page.leave();
}

void serviceDies(Stage& stage) {
    stage.rules({"TRAFFIC usual", "TRAFFIC usual", "TRAFFIC die"});
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo("service -> plug-in: (ends without an answer)");
    stage.conversation().skipTo("plug-in -> page: c_addcomm('ssldrop')");
    stage.conversation().expect({"page -> user: Connection lost", "page -> plug-in: "});
    stage.settle();
    stage.conversation().expectNothingMore();
    stage.show(page);
    page.leave();
    stage.expectServiceGone();
}

void networkError(Stage& stage) {
    stage.rules({"CONNECT hang-up"});
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo("service -> plug-in: (hangs up)");
    stage.conversation().skipTo("plug-in -> service: ?INFO (own socket, 934 zero bytes behind)");
    stage.conversation().expect({
        "service -> plug-in: &sslinfo,v1,idle,10.8.0.17,255.255.255.0",
        "plug-in -> page: c_addcomm('&sslinfo,v1,idle,10.8.0.17,255.255.255.0')",
        "page -> plug-in: STATUS",
    });
    stage.conversation().skipTo("page -> user: Connected");
    stage.conversation().skipTo("page -> plug-in: WAIT");
    stage.show(page);
    page.leave();
    stage.expectServiceStopped();
}

void info(Stage& stage) {
    Page& page = stage.openPortal("?connect");
    stage.conversation().skipTo("page -> plug-in: WAIT");
    page.press("info");
    stage.conversation().skipTo("plug-in -> service: ?INFO&JS (own socket, 1 zero bytes behind)");
    stage.conversation().skipTo(
        "page -> user: info is &sslinfo,v1,connected,10.8.0.17,255.255.255.0");
    stage.show(page);
    page.leave();
    stage.expectServiceStopped();
}

void twoPages(Stage& stage) {
    Page& first = stage.openPortal("?connect");
    stage.conversation().skipTo("page -> user: Connected");
    Page& second = stage.openPortal("?connect");
    stage.conversation().skipTo(
        "plug-in -> page 2: c_addcomm('&sslsetstatus,v1,disconnectedwitherror,1')");
    stage.conversation().skipTo("page 2 -> user: Already in use");
    second.leave();
    stage.settle();
    stage.expectServiceRuns();
    stage.conversation().skipAll();
    stage.conversation().skipTo("page -> plug-in: WAIT");
    stage.show(first);
    first.leave();
    stage.expectServiceStopped();
}

}  // namespace

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = {
        {"connect",
         "the page reached the connected state; the service was stopped when the page went away",
         connect},
        {"probe", "the page got the service's INFO answer once; the service still runs", probe},
        {"already-running",
         "the page was told that the service was already running; the service still runs",
         alreadyRunning},
        {"not-installed", "the page's VPNNotInstalled() was called; nothing else came of it",
         notInstalled},
        {"service-dies", "the page was told \"ssldrop\"; nothing was asked after that",
         serviceDies},
        {"network-error",
         "the request that failed was replaced by a direct INFO request; the conversation went on",
         networkError},
        {"info", "the page read the property `info`; the service was stopped afterwards", info},
        {"two-pages",
         "the second page was told that the service runs; only the first page stopped it",
         twoPages},
    };
    return all;
}
