#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// How the scripted service treats one connection.
struct ServiceScript {
    std::size_t requestSize = 0;             ///< reads this many bytes before it answers
    std::vector<std::string> segments = {};  ///< what it sends; each but the first only after the
                                             ///< peer closed or has waited in vain for it
    bool resets = false;                     ///< ends with a reset instead of a close
    bool waitsForPeer = true;                ///< closes only after the peer has
};

/// A service on 127.0.0.1:44444 that does to the byte what its script says and keeps what came in.
/// Serves connections one after the other on a thread of its own, all with the same script.
class ScriptedService {
  public:
    explicit ScriptedService(ServiceScript script);
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;
    ~ScriptedService();

    /// Ends the service when the current connection is done, and gives all that came in, one
    /// entry a connection.
    std::vector<std::string> requests();

  private:
    void serve();
    void serveOne(int peer);
    void stop();

    ServiceScript m_script;
    int m_listener = -1;
    int m_stop[2] = {-1, -1};
    std::vector<std::string> m_requests;
    std::thread m_thread;
};
