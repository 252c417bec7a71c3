#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "child_process.h"
#include "fault_points.h"
#include "launcher.h"
#include "notify_data.h"
#include "plugin_test.h"
#include "scripted_service.h"
#include "service_files.h"

// Calls of the system's that fail, one at a time.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SystemFailure : public PluginTest {
  protected:
    SystemFailure() { removeServiceFiles(); }
    ~SystemFailure() override { removeServiceFiles(); }

    static int start() { return LaunchVPN("text", 0); }

    const int m_descriptors = openDescriptors();
};

// Starting the service.

TEST_F(SystemFailure, NoPipeIsAFailedLaunch) {
    installService("note");
    const Fault fault("pipe", 1, EMFILE);
    EXPECT_EQ(start(), -5);
    EXPECT_EQ(log.lines().back(), "[LaunchVPN] pipe error='24'\n");
    EXPECT_EQ(serviceReport(), "");
}

TEST_F(SystemFailure, NoForkIsAFailedLaunchAndLeavesNoDescriptor) {
    installService("note");
    const Fault fault("fork", 1, EAGAIN);
    EXPECT_EQ(start(), -5);
    EXPECT_EQ(log.lines().back(), "[LaunchVPN] fork error='11'\n");
    EXPECT_EQ(serviceReport(), "");
    EXPECT_EQ(openDescriptors(), m_descriptors);
}

TEST_F(SystemFailure, WithoutDuplicationTheProgramRunsWithTheHostsInput) {
    const auto descriptors = [] {
        std::vector<std::string> found;
        std::istringstream report(serviceReport());
        for (std::string line; std::getline(report, line);) {
            if (line.rfind("descriptor ", 0) == 0) found.push_back(line);
        }
        return found;
    };
    installService("note exit=0");
    EXPECT_EQ(start(), 0);
    const std::vector<std::string> usual = descriptors();
    const Fault fault("dup2", 1, EBUSY);
    EXPECT_EQ(start(), 0);
    // The read end has been closed: neither at 0 nor under its own number.
    EXPECT_EQ(descriptors().size(), usual.size() - 1);
    EXPECT_NE(descriptors().at(0), usual.at(0));
}

TEST_F(SystemFailure, AnInterruptedWaitIsTakenUpAgain) {
    installService("exit=2");
    const Fault fault("waitpid", 1, EINTR);
    EXPECT_EQ(start(), -2);
    EXPECT_EQ(fault.calls(), 2);
}

TEST_F(SystemFailure, AWaitThatFailsCountsAsStarted) {
    installService("exit=2");
    {
        const Fault fault("waitpid", 1, ECHILD);
        EXPECT_EQ(start(), 0);
    }
    EXPECT_TRUE(log.lines().back().ends_with("',  WIFEXITED='0'\n"));
    waitpid(-1, nullptr, 0);
}

TEST_F(SystemFailure, AWriteThatFailsIsNotLookedAt) {
    installService("input exit=2");
    const Fault fault("write", 1, EPIPE);
    EXPECT_EQ(start(), -2);
    EXPECT_EQ(serviceInput(), "");
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(SystemFailure, AShortWriteIsNotLookedAt) {
    installService("input exit=0");
    const Fault fault("write", 1, 0, 2);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(SystemFailure, AProcessThatCannotBeAskedAboutIsNotThere) {
    installService("exit=0");
    const ChildProcess running("nevo");
    writePidFile(std::to_string(running.pid()));
    const Fault fault("getpgid", 1, EPERM);
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(log.linesStarting("[LaunchVPN] nevo"), IsEmpty());
}

// The process table.

class ProcessTable : public SystemFailure {
  protected:
    const ChildProcess service{"nevo"};

    bool isOwner() { return NevoOwnsPid(service.pid()); }
};

TEST_F(ProcessTable, ThatCannotBeSizedIsLoggedAndOwnsNothing) {
    const Fault fault("opendir", 1, EMFILE);
    EXPECT_FALSE(isOwner());
    EXPECT_THAT(log.events(),
                ElementsAre("[CheckNevoByPid] sysctl failed (Too many open files)\n"));
}

TEST_F(ProcessTable, ThatCannotBeReadIsLoggedAndOwnsNothing) {
    const Fault fault("opendir", 2, EACCES);
    EXPECT_FALSE(isOwner());
    EXPECT_THAT(log.events(), ElementsAre("[CheckNevoByPid] sysctl failed (Permission denied)\n"));
}

TEST_F(ProcessTable, ThatGrowsMeanwhileIsLoggedAndNotAskedForAgain) {
    std::vector<std::unique_ptr<ChildProcess>> crowd;
    const Fault fault("opendir", 2, [&] {
        for (int i = 0; i < 40; ++i) crowd.push_back(std::make_unique<ChildProcess>("crowd"));
    });
    EXPECT_FALSE(isOwner());
    EXPECT_EQ(fault.calls(), 2);
    EXPECT_THAT(log.events(),
                ElementsAre("[CheckNevoByPid] sysctl failed (Cannot allocate memory)\n"));
}

TEST_F(ProcessTable, ThatFindsNoMemoryIsLoggedAndOwnsNothing) {
    const Fault fault("malloc", 1, ENOMEM, 0);
    EXPECT_FALSE(isOwner());
    ASSERT_EQ(log.events().size(), 1U);
    int size = 0;
    int end = 0;
    EXPECT_EQ(sscanf(log.events()[0].c_str(),
                     "[CheckNevoByPid] Cannot allocate memory with %d size \n%n", &size, &end),
              1);
    EXPECT_GT(size, 0);
    EXPECT_EQ(size % 648, 0);
    EXPECT_EQ(log.events()[0],
              "[CheckNevoByPid] Cannot allocate memory with " + std::to_string(size) + " size \n");
}

TEST_F(ProcessTable, ThatIsOutOfReachMeansThatTheServiceIsStarted) {
    installService("exit=0");
    writePidFile(std::to_string(service.pid()));
    const Fault fault("opendir", 1, EMFILE);
    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(log.contains("nevo is not owner of the pid"));
}

// The relay.

TEST_F(SystemFailure, AServiceOfAnotherUsersCountsAsGone) {
    Embedding page(plugin);
    installService("exit=0");
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    streamData notify{};
    notify.type = 2;
    writePidFile("1");
    {
        const Fault fault("kill", 1, EPERM);
        plugin.urlnotify(page.handle(), "http://here/", 0, &notify);
    }
    EXPECT_EQ(browser.lastRequest().url, "javascript:c_addcomm('ssldrop')");
    EXPECT_TRUE(
        log.contains("[PluginInstance_URLNotify] ERROR! nevo is not running (pid=1). "
                     "error=1, str=Operation not permitted\n"));
    removeServiceFiles();
}

struct SocketFault {
    const char* call;
    int error;
    long result;
    const char* line;
};

class DirectRequestFault : public SystemFailure, public testing::WithParamInterface<SocketFault> {};

TEST_P(DirectRequestFault, IsLoggedAndEndsInTheDropNotice) {
    ScriptedService service({.waitsForPeer = false});
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    streamData notify{};
    notify.type = 3;
    const auto& [call, error, result, line] = GetParam();
    {
        const Fault fault(call, 1, error, result);
        plugin.urlnotify(page.handle(), "http://here/", 1, &notify);
    }
    EXPECT_EQ(browser.lastRequest().url, "javascript:c_addcomm('ssldrop')");
    EXPECT_TRUE(log.contains(line)) << line;
}

INSTANTIATE_TEST_SUITE_P(
    Calls, DirectRequestFault,
    testing::Values(
        SocketFault{"socket", EMFILE, -1,
                    "[GetDataFromNevo] socket() failed=Too many open files\n"},
        SocketFault{"connect", EINTR, -1,
                    "[GetDataFromNevo] connect() failed=Interrupted system call\n"},
        SocketFault{"write", EPIPE, -1, "[GetDataFromNevo] write() failed=Broken pipe\n"},
        SocketFault{"write", EAGAIN, 0,
                    "[GetDataFromNevo] write() failed=Resource temporarily unavailable\n"}),
    [](const auto& row) { return row.param.call + std::to_string(row.index); });

TEST_F(SystemFailure, OneByteWrittenIsEnoughForTheDirectRequest) {
    ScriptedService service({.segments = {"h\r\n\r\nbody"}});
    Embedding page(plugin);
    ASSERT_EQ(page.create(), 0);
    streamData notify{};
    notify.type = 3;
    {
        const Fault fault("write", 1, 0, 1);
        plugin.urlnotify(page.handle(), "http://here/", 1, &notify);
    }
    EXPECT_EQ(browser.lastRequest().url, "javascript:c_addcomm('body')");
}

// Reading `info`.

class InfoFault : public SystemFailure {
  protected:
    InfoFault() {
        EXPECT_EQ(page.create(), 0);
        log.clear();
    }

    // @return the text that the page gets, "false" in its place for a failure.
    std::string read() {
        NPObject* object = page.record().scriptableObject;
        NPVariant result{};
        object->_class->getProperty(object, ScriptedBrowser::identifier("info"), &result);
        if (result.type != NPVariantType_String) return "false";
        std::string text = result.value.stringValue.UTF8Characters;
        std::free(const_cast<char*>(result.value.stringValue.UTF8Characters));
        return text;
    }

    // The one line that says what went wrong.
    std::vector<std::string> errors() const {
        return log.linesStarting("[scriptableGetProperty] ERROR!");
    }

    Embedding page{plugin};
};

TEST_F(InfoFault, NoSocketIsLogged) {
    const Fault fault("socket", 1, EMFILE);
    EXPECT_EQ(read(), "false");
    EXPECT_THAT(errors(), ElementsAre("[scriptableGetProperty] ERROR! Cannot create socket. "
                                      "errno=24. Reason 'Too many open files'\n"));
}

TEST_F(InfoFault, AFailedOptionIsLoggedAndTheRequestGoesOn) {
    ScriptedService service({.requestSize = 93, .segments = {"h\r\n\r\nbody"}});
    const Fault fault("setsockopt", 1, ENOPROTOOPT);
    EXPECT_EQ(read(), "body");
    EXPECT_THAT(errors(),
                ElementsAre("[scriptableGetProperty] ERROR! Cannot disable Nagle algorithm "
                            "'Protocol not available'\n"));
}

TEST_F(InfoFault, AnInterruptedConnectIsAFailure) {
    ScriptedService service({});
    const Fault fault("connect", 1, EINTR);
    EXPECT_EQ(read(), "false");
    EXPECT_THAT(errors(), ElementsAre("[scriptableGetProperty] ERROR! Cannot connect to nevo\n"));
}

TEST_F(InfoFault, AShortWriteIsAFailure) {
    for (const long written : {0L, 50L, 92L, -1L}) {
        log.clear();
        ScriptedService service({.segments = {"h\r\n\r\nbody"}, .waitsForPeer = false});
        const Fault fault("write", 1, EAGAIN, written);
        EXPECT_EQ(read(), "false");
        EXPECT_THAT(errors(),
                    ElementsAre("[scriptableGetProperty] ERROR! Cannot send request to nevo\n"));
    }
}

TEST_F(InfoFault, AnInterruptedReadIsAFailure) {
    // The service neither reads nor answers, so that the plug-in's read is the first of all.
    ScriptedService service({.waitsForPeer = false});
    const Fault fault("read", 1, EINTR);
    EXPECT_EQ(read(), "false");
    EXPECT_THAT(errors(),
                ElementsAre("[scriptableGetProperty] ERROR! Cannot read response from nevo\n"));
}

TEST_F(InfoFault, NoMemoryForTheTextIsLogged) {
    ScriptedService service({.requestSize = 93, .segments = {"h\r\n\r\nbody"}});
    const Fault fault("malloc", 1, ENOMEM, 0);
    EXPECT_EQ(read(), "false");
    EXPECT_THAT(errors(), ElementsAre("[scriptableGetProperty] ERROR! Cannot allocate memory\n"));
}

TEST_F(InfoFault, LeavesNoDescriptorBehind) {
    for (const char* call : {"socket", "connect", "write", "read", "malloc"}) {
        {
            ScriptedService service({.segments = {"h\r\n\r\nbody"}});
            const Fault fault(call, 1, EINTR, call == std::string("malloc") ? 0 : -1);
            EXPECT_EQ(read(), "false") << call;
        }
        EXPECT_EQ(openDescriptors(), m_descriptors) << call;
    }
}

}  // namespace
