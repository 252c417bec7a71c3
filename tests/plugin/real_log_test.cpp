#include "real_log.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "child_process.h"
#include "scripted_service.h"
#include "service_files.h"

// The log file of whole conversations, line by line, as a user finds it.

namespace {

namespace fs = std::filesystem;

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

using Items = std::vector<std::string>;

const std::string kService = "http://127.0.0.1:44444/vpn.php";

std::string ownPid() { return std::to_string(getpid()); }

class LogFile : public RealLog {
  protected:
    void load() {
        start();
        newItems();
    }

    void answer(std::string_view text, const Delivery& how = {}) {
        page.deliver(browser.lastRequest(), text, how);
    }

    Embedding page{plugin};
};

// The lines of each part of a conversation.

Items started() {
    return joined(
        {startUp(),
         banner(),
         {"[NP_Initialize] Plugin initialization...",
          "[NP_Initialize] NPNetscapeFuncs version of browser 26", "[NP_GetEntryPoints]"}});
}

struct Page {
    int count = 0;     // of parameters
    Items parameters;  // lines of theirs
    std::string vpnA;  // before "browser_pid="
    std::string install = "0";
    std::string probe = "0";
    std::string last = "0";
};

Items created(const Page& page, const Items& action) {
    const std::string prefix = "[NS_NewPluginInstance] ";
    return joined({banner(),
                   {prefix + "User Agent:'Scripted/1.0'",
                    prefix + "Memory allocation: " + std::to_string(sizeof(nsPluginInstance)),
                    prefix + "Parsing input arguments, count='" + std::to_string(page.count) + "'"},
                   page.parameters,
                   {prefix + std::to_string(page.count) + ". hosturl=, nevoURL=. nevosize=",
                    prefix + "vpnA:='" + page.vpnA + "browser_pid=" + ownPid() + "&'",
                    prefix + "install='" + page.install + "' plugin->probeVpn='" + page.probe +
                        "' _last_param='" + page.last + "'"},
                   action,
                   {prefix + "Done", "[scriptableAllocate] "}});
}

Items probed(const Items& more = {}) {
    return created({.count = 1, .parameters = {}, .vpnA = {}, .probe = "1"},
                   joined({{"[NS_ProbeVpn] Checking nevo",
                            "[NS_ProbeVpn] Call Init url='" + kService + "?INFO'"},
                           more}));
}

// A launch with the lines of the launcher and of what follows from its result.
Items launched(const Items& launcher, const Items& outcome) {
    return created({.count = 1, .parameters = {}, .vpnA = {}, .last = "1"},
                   joined({{"[NS_NewPluginInstance] NS_LaunchVpn", "[NS_LaunchVpn]",
                            "[LaunchVPN] ('browser_pid=" + ownPid() + "&', '0')"},
                           launcher,
                           outcome}));
}

Items justStarted() {
    return {"[NS_LaunchVpn] SERVER_STATUS_JUST_STARTED",
            "[NS_LaunchVpn] Call Init url='" + kService + "?CONNECT'",
            "[NS_LaunchVpn] Call finished'"};
}

Items exited(int status) {
    return {"[LaunchVPN] process exited pid='?',  WIFEXITED='" + std::to_string(status) + "'"};
}

// What the browser delivers for a request, `blocks` of text first.
Items delivered(const std::string& url, int type, int blocks = 1) {
    const std::string of = "stream=0x?, url='" + url + "'";
    const std::string number = std::to_string(type);
    Items items = {"[PluginInstance_NewStream] " + of + ", mime-type=text/plain",
                   "PluginInstance_NewStream: notify Type(=" + number + ")",
                   "[PluginInstance_NewStream]  Done type =" + number};
    for (int i = 0; i < blocks; ++i) {
        items.push_back("[PluginInstance_WriteReady] " + of);
        items.push_back("[PluginInstance_Write] " + of);
        items.push_back("[PluginInstance_Write] notify type=" + number);
    }
    items.push_back("[PluginInstance_DestroyStream] " + of + ", reason=0 ");
    items.push_back("[PluginInstance_DestroyStream] notify type=" + number + " ");
    return items;
}

Items notified(const std::string& url, int type, int reason = 0) {
    return {"[PluginInstance_URLNotify] aPlugin=?, url=" + url +
            ", reason=" + std::to_string(reason) + ", type=" + std::to_string(type)};
}

std::string pageCall(const std::string& text) { return "javascript:c_addcomm('" + text + "')"; }

Items handedToPage(const std::string& text) {
    return {"[PluginInstance_URLNotify] response notify for NEVO_HTTP ='" + text + "'",
            "[sendToJavaScript] Data from server ='" + text + "'",
            "[sendToJavaScript] call GetURL, buf='" + pageCall(text) + "'"};
}

Items handedToService(const std::string& text, const std::string& query) {
    return {"[PluginInstance_URLNotify] respnse notify for (status) SJS ='" + text + "'",
            "[sendToNevo] call GetURLNotify, buf='" + kService + "?" + query + "'"};
}

Items destroyed(int doNotTerminate, const Items& stopping = {}) {
    Items items = joined({{"[PluginInstance_shut]", "[NS_DestroyPluginInstance] doNotTerminate = " +
                                                        std::to_string(doNotTerminate)},
                          stopping});
    for (const char* type : {"1", "2", "3"}) {
        items.push_back(std::string("[destroyNotifyData] destroying notify data of type = ") +
                        type);
        items.push_back(std::string("[destroyNotifyData] Done destroying notify data of type = ") +
                        type);
    }
    return items;
}

// The file itself.

TEST_F(LogFile, BeginsWithTheSystemAndTheFirstRun) {
    start();
    const std::string text = bytesOf(logPath());
    const std::string rule = fileRule() + "\n";
    std::string node(256, '\0');
    gethostname(node.data(), node.size());
    EXPECT_EQ(text.rfind(rule + "Kernel version: ", 0), 0U);
    const std::string header = text.substr(rule.size(), text.find(rule, 1) - rule.size());
    EXPECT_THAT(header, testing::MatchesRegex("Kernel version: [^\n]+\nSystem: [A-Za-z]+\n"
                                              "Release: [^\n]+\nModel: [a-z0-9_]+\n"
                                              "Node name: [^\n]+\n"));
    EXPECT_THAT(header, HasSubstr(std::string("\nNode name: ") + node.c_str() + "\n"));
    EXPECT_THAT(itemsOf(logPath()), ElementsAreArray(started()));
}

TEST_F(LogFile, EndsWithTheShutdown) {
    load();
    module->shutdown();
    EXPECT_THAT(newItems(), ElementsAreArray({"[NP_Shutdown]"}));
    plugin.getvalue(page.handle(), NPPVpluginNameString, nullptr);
    EXPECT_THAT(newItems(), IsEmpty());
    ASSERT_EQ(page.create(), 0);
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({startUp(), created({}, {"[NS_NewPluginInstance] nothing to do"})})))
        << "the page begins a run of its own, in the same file";
}

TEST_F(LogFile, LinesAreOfTheThreadThatTheBrowserCalls) {
    load();
    ASSERT_EQ(page.create(), 0);
    for (const LogLine& line : linesOf(logPath())) EXPECT_EQ(line.threadId, gettid()) << line.item;
}

// Pages.

TEST_F(LogFile, OfAPageWithNothingToDo) {
    load();
    ASSERT_EQ(page.create({{"a", "1"}, {"b", "x y"}}), 0);
    EXPECT_THAT(newItems(),
                ElementsAreArray(created({.count = 2, .parameters = {}, .vpnA = "a=1&b=x y&"},
                                         {"[NS_NewPluginInstance] nothing to do"})));
    page.destroy();
    EXPECT_THAT(newItems(), ElementsAreArray(destroyed(1)));
}

TEST_F(LogFile, OfAProbe) {
    load();
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    EXPECT_THAT(newItems(), ElementsAreArray(probed()));
    answer("state=up");
    EXPECT_THAT(newItems(), ElementsAreArray(joined({delivered(kService + "?INFO", 3),
                                                     notified(kService + "?INFO", 3),
                                                     handedToPage("state=up")})));
    answer("seen");
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({delivered(pageCall("state=up"), 2),
                            notified(pageCall("state=up"), 2),
                            {"[PluginInstance_URLNotify] respnse notify for (status) SJS ='seen'",
                             "[sendToNevo] It's probeVpn responce. Terminate work"}})));
    page.destroy();
    EXPECT_THAT(newItems(), ElementsAreArray(destroyed(1)));
}

TEST_F(LogFile, OfARefusedProbe) {
    load();
    browser.answerRequest = [](int) -> NPError { return 4; };
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    EXPECT_THAT(newItems(),
                ElementsAreArray(probed({"[NS_ProbeVpn] ERROR! cannot call GetURL. url='" +
                                             kService + "?INFO', errorcode='4'",
                                         "[NS_NewPluginInstance] Error call of NS_probeVpn. "
                                         "'-7'"})));
}

TEST_F(LogFile, OfAServiceThatIsNotInstalled) {
    installService("exit=2");
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    const std::string call = "javascript:VPNNotInstalled()";
    EXPECT_THAT(newItems(), ElementsAreArray(launched(
                                exited(2), {"[NS_LaunchVpn] VPN_NOT_INSTALLED",
                                            "[NS_LaunchVpn] call GetURL, buf='" + call + "'"})));
    answer("");
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({delivered(call, 1, 0),
                            notified(call, 1),
                            {"[PluginInstance_URLNotify] response notify Unhandled type ='1'"}})));
}

TEST_F(LogFile, OfAServiceThatRunsAlready) {
    const ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    const std::string call = pageCall("&sslsetstatus,v1,disconnectedwitherror,1");
    EXPECT_THAT(newItems(),
                ElementsAreArray(launched({"[LaunchVPN] nevo server already launched, pid='" +
                                           std::to_string(running.pid()) + "'"},
                                          {"[NS_LaunchVpn] SERVER_STATUS_ALREADY_LAUNCHED",
                                           "[NS_LaunchVpn] call GetURL, buf='" + call + "'"})));
    answer("seen");
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({delivered(call, 2),
                            notified(call, 2),
                            {"[PluginInstance_URLNotify] respnse notify for (status) SJS ='seen'",
                             "[sendToNevo] Skip browser message!"}})));
}

TEST_F(LogFile, OfAConversation) {
    installService("exit=0");
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_THAT(newItems(), ElementsAreArray(launched(exited(0), justStarted())));
    const std::string connect = kService + "?CONNECT";
    answer("one", {.chunk = 2});
    EXPECT_THAT(newItems(), ElementsAreArray(joined({delivered(connect, 3, 2), notified(connect, 3),
                                                     handedToPage("one")})));
    answer("two");
    EXPECT_THAT(newItems(), ElementsAreArray(
                                joined({delivered(pageCall("one"), 2), notified(pageCall("one"), 2),
                                        handedToService("two", "two&z=0")})));
    answer("HTTP/1.1 200 OK\r\n\r\nthree");
    const std::string command = kService + "?two&z=0";
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({delivered(command, 3),
                            notified(command, 3),
                            {"[PluginInstance_URLNotify] response notify for NEVO_HTTP "
                             "='HTTP/1.1 200 OK\r\n\r\nthree'",
                             "[sendToJavaScript] Data from server ='HTTP/1.1 200 OK\r\n\r\nthree'",
                             "[sendToJavaScript] Data from server corrected='three'",
                             "[sendToJavaScript] call GetURL, buf='" + pageCall("three") + "'"}})));
    answer("");
    EXPECT_THAT(newItems(), ElementsAreArray(joined({delivered(pageCall("three"), 2, 0),
                                                     notified(pageCall("three"), 2),
                                                     handedToService("", "INFO&z=1")})));
    page.destroy();
    EXPECT_THAT(newItems(), ElementsAreArray(destroyed(0, {"[LaunchVPN] ('INFO', '1')"})));
}

TEST_F(LogFile, OfANetworkErrorThatTheServiceItselfMendsAndOneThatItDoesNot) {
    installService("exit=0");
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    newItems();
    const BrowserRequest request = browser.lastRequest();
    const std::string connect = kService + "?CONNECT";
    const Items failed =
        joined({notified(connect, 3, 1),
                {"[PluginInstance_URLNotify] ERROR! Network Error.", "[GetDataFromNevo]"}});
    {
        const std::string reply = "HTTP/1.1 200 OK\r\n\r\nup";
        ScriptedService service({.requestSize = 1000, .segments = {reply}});
        page.notify(request, NPRES_NETWORK_ERR);
        EXPECT_THAT(newItems(),
                    ElementsAreArray(joined(
                        {failed, {"[GetDataFromNevo] got reply: " + reply}, handedToPage("up")})));
    }
    page.notify(request, NPRES_NETWORK_ERR);
    EXPECT_THAT(newItems(),
                ElementsAreArray(joined({failed,
                                         {"[GetDataFromNevo] connect() failed=Connection refused",
                                          "[PluginInstance_URLNotify] call GetURL, buf='" +
                                              pageCall("ssldrop") + "'"}})));
}

TEST_F(LogFile, OfAServiceThatIsGone) {
    installService("exit=0");
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    answer("x");
    newItems();
    const pid_t gone = deadPid();
    writePidFile(std::to_string(gone));
    answer("");
    EXPECT_THAT(
        newItems(),
        ElementsAreArray(joined(
            {delivered(pageCall("x"), 2, 0),
             notified(pageCall("x"), 2),
             {"[PluginInstance_URLNotify] ERROR! nevo is not running (pid=" + std::to_string(gone) +
                  "). error=3, str=No such process",
              "[PluginInstance_URLNotify] call GetURL, buf='" + pageCall("ssldrop") + "'"}})));
    fs::remove(kPidFile);
}

// The copy of the process that was to become the service writes one line, under the id of the
// process that it is a copy of, and its own thread's.
TEST_F(LogFile, OfAServiceWhoseProgramIsMissing) {
    load();
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    EXPECT_THAT(newItems(),
                ElementsAreArray(launched(
                    joined({{"[LaunchVPN] - something wrong if we are here!"}, exited(255)}),
                    justStarted())));
    const std::vector<LogLine> lines = linesOf(logPath());
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string start = "0,,,, [LaunchVPN] process exited pid='";
        if (lines[i].item.rfind(start, 0) != 0) continue;
        EXPECT_EQ(lines[i - 1].threadId, std::stol(lines[i].item.substr(start.size())));
    }
}

TEST_F(LogFile, OfAReadOfTheServicesState) {
    load();
    ASSERT_EQ(page.create(), 0);
    newItems();
    NPObject* const object = page.record().scriptableObject;
    NPVariant result{};
    const auto read = [&](const char* name) {
        object->_class->getProperty(object, ScriptedBrowser::identifier(name), &result);
    };
    const std::string prefix = "[scriptableGetProperty] ";
    {
        ScriptedService service({.requestSize = 93, .segments = {"HTTP/1.1 200 OK\r\n\r\nup"}});
        read("info");
        std::free(const_cast<char*>(result.value.stringValue.UTF8Characters));
    }
    EXPECT_THAT(newItems(), ElementsAreArray({prefix, prefix + "Property name is 'info'",
                                              prefix + "Return value 'up' "}));
    read("info");
    EXPECT_THAT(newItems(), ElementsAreArray({prefix, prefix + "Property name is 'info'",
                                              prefix + "ERROR! Cannot connect to nevo",
                                              prefix + "Return value 'false' "}));
    read("other");
    EXPECT_THAT(newItems(), ElementsAreArray({prefix, prefix + "Property name is not 'info'",
                                              prefix + "Return value 'false' "}));
}

// The log is one: a page that goes closes it for the others, until a new page opens it.
TEST_F(LogFile, IsClosedForAllPagesWhenOneGoesUntilTheNextComes) {
    load();
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    const BrowserRequest request = browser.lastRequest();
    {
        Embedding other(plugin);
        ASSERT_EQ(other.create(), 0);
        newItems();
        other.destroy();
        EXPECT_THAT(newItems(), ElementsAreArray(destroyed(1)));
    }
    page.deliver(request, "unseen");
    EXPECT_EQ(browser.lastRequest().url, pageCall("unseen")) << "the page is served all the same";
    EXPECT_THAT(newItems(), IsEmpty());
    Embedding third(plugin);
    ASSERT_EQ(third.create(), 0);
    EXPECT_THAT(newItems(),
                ElementsAreArray(
                    joined({startUp(), created({}, {"[NS_NewPluginInstance] nothing to do"})})));
    page.deliver(request, "seen");
    EXPECT_THAT(newItems().back(), HasSubstr(pageCall("seen")));
}

// What a page may write.

TEST_F(LogFile, ShowsStarsForThePasswordWhichStandsInNoFile) {
    const std::string password = "the-Secret-of-the-page";
    installService("note input exit=0");
    load();
    ASSERT_EQ(
        page.create(
            {{"_userpassword", password.c_str()}, {"_installmethod", "pkg"}, {"last_param", ""}}),
        0);
    answer("one");
    answer("two");
    page.destroy();
    const Items lines = newItems();
    EXPECT_THAT(lines, testing::Contains("[NS_NewPluginInstance] _userpassword='**********'"));
    EXPECT_THAT(lines, testing::Contains("[NS_NewPluginInstance] _installmethod='pkg'"));
    EXPECT_EQ(serviceInput(), "browser_pid=" + ownPid() + "&");
    // In the folder for temporary files itself, for a checkout may lie in one below.
    std::vector<fs::directory_entry> entries(fs::directory_iterator("/tmp"), {});
    for (const std::string& folder : {home(), std::string("/Library")}) {
        entries.insert(entries.end(), fs::recursive_directory_iterator(folder), {});
    }
    int files = 0;
    for (const fs::directory_entry& entry : entries) {
        if (!entry.is_regular_file() || entry.path() == kServiceProgram) continue;
        ++files;
        EXPECT_EQ(bytesOf(entry.path()).find(password), std::string::npos) << entry.path();
    }
    EXPECT_GT(files, 2) << "the log, the service's input and its notes";
}

// Texts of the page are never formats, and stand as they are: with a line end in it, a text looks
// like more lines than it is.
TEST_F(LogFile, HoldsThePagesTextsToTheLetter) {
    load();
    const std::string text = "%s%n%d, 0,,,, \"'\n[NP_Shutdown]\t\xFF";
    ASSERT_EQ(page.create({{"_probevpn", ""}, {"a", text.c_str()}}), 0);
    EXPECT_THAT(newItems(), testing::Contains("[NS_NewPluginInstance] vpnA:='a=" + text +
                                              "&browser_pid=" + ownPid() + "&'"));
    answer(text);
    EXPECT_THAT(newItems(), testing::IsSupersetOf(handedToPage(text)));
}

TEST_F(LogFile, HoldsAMegabyteWhole) {
    load();
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    const std::string text(1 << 20, 'x');
    answer(text);
    EXPECT_TRUE(newItems().back() ==
                "[sendToJavaScript] call GetURL, buf='" + pageCall(text) + "'");
}

}  // namespace
