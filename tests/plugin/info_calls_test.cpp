#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cstdlib>

#include "plugin_test.h"
#include "scriptable.h"
#include "scripted_service.h"
#include "socket_calls.h"

// The steps of a read of `info` on the plug-in's own socket.

namespace {

using testing::ElementsAre;

class InfoCalls : public PluginTest {
  protected:
    // Reads `info`. @return the calls that it took.
    static std::vector<std::string> read() {
        NPVariant result{};
        const SocketCalls calls;
        sNPClass.getProperty(nullptr, ScriptedBrowser::identifier("info"), &result);
        if (result.type == NPVariantType_String)
            std::free(const_cast<NPUTF8*>(result.value.stringValue.UTF8Characters));
        return calls.made;
    }

    const std::string m_open = callText("socket", AF_INET, SOCK_STREAM, 0);
    const std::string m_sendAtOnce = callText("setsockopt", IPPROTO_TCP, TCP_NODELAY, 1, 4);
    const std::string m_connect = callText("connect", INADDR_LOOPBACK, 44444);
    const std::string m_shutDown = callText("shutdown", SHUT_RDWR);
};

TEST_F(InfoCalls, AreOneWriteAndOneReadOnASocketThatSendsAtOnce) {
    ScriptedService service({.requestSize = 93, .segments = {"h\r\n\r\nbody"}});
    EXPECT_THAT(read(), ElementsAre(m_open, m_sendAtOnce, m_connect, "write(93)", "read(511)",
                                    m_shutDown, "close()"));
}

TEST_F(InfoCalls, ShutTheSocketDownAfterABadAnswer) {
    ScriptedService service({.requestSize = 93, .waitsForPeer = false});
    EXPECT_THAT(read(), ElementsAre(m_open, m_sendAtOnce, m_connect, "write(93)", "read(511)",
                                    m_shutDown, "close()"));
}

TEST_F(InfoCalls, OnlyCloseASocketThatWasNeverConnected) {
    EXPECT_THAT(read(), ElementsAre(m_open, m_sendAtOnce, m_connect, "close()"));
}

}  // namespace
