#include <netinet/in.h>
#include <sys/socket.h>

#include "direct_info.h"
#include "plugin_test.h"
#include "scripted_service.h"
#include "socket_calls.h"

// The steps of the plug-in's own INFO request when the browser's has failed.

namespace {

using testing::ElementsAre;

class DirectInfoCalls : public PluginTest {
  protected:
    // Makes the request, whose result must be `expected`. @return the calls that it took.
    static std::vector<std::string> request(int expected) {
        CString data;
        nsPluginInstance record{};
        record.data = &data;
        const SocketCalls calls;
        EXPECT_EQ(GetDataFromNevo(&record), expected);
        return calls.made;
    }

    const std::string m_open = callText("socket", AF_INET, SOCK_STREAM, 0);
    const std::string m_connect = callText("connect", INADDR_LOOPBACK, 44444);
};

TEST_F(DirectInfoCalls, AreOneWriteAndOneReadOfAThousandBytes) {
    ScriptedService service({.requestSize = 1000, .segments = {"h\r\n\r\nbody"}});
    EXPECT_THAT(request(1), ElementsAre(m_open, m_connect, "write(1000)", "read(1000)", "close()"));
}

TEST_F(DirectInfoCalls, DoNotReadOnWhenTheReadIsFull) {
    ScriptedService service(
        {.requestSize = 1000, .segments = {"h\r\n\r\n" + std::string(5000, 'x')}});
    EXPECT_THAT(request(1), ElementsAre(m_open, m_connect, "write(1000)", "read(1000)", "close()"));
}

TEST_F(DirectInfoCalls, NeverCloseASocketThatFailed) {
    EXPECT_THAT(request(0), ElementsAre(m_open, m_connect));
    ScriptedService service({.requestSize = 1000, .waitsForPeer = false});
    EXPECT_THAT(request(0), ElementsAre(m_open, m_connect, "write(1000)", "read(1000)"));
}

}  // namespace
