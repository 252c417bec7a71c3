#include "scripted_service.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

// Longer than any step takes, so that a wrong peer fails its test instead of hanging it.
constexpr int kPatienceMs = 3000;

bool isReadable(int fd) {
    pollfd ready = {fd, POLLIN, 0};
    return poll(&ready, 1, kPatienceMs) > 0;
}

// Reads until `size` bytes have come in, the peer has closed, or patience ends.
std::string readUpTo(int peer, std::size_t size) {
    std::string text;
    char block[4096];
    while (text.size() < size && isReadable(peer)) {
        const ssize_t count = read(peer, block, std::min(sizeof block, size - text.size()));
        if (count <= 0) break;
        text.append(block, static_cast<std::size_t>(count));
    }
    return text;
}

void sendAll(int peer, const std::string& text) {
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t count = send(peer, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return;
        sent += static_cast<std::size_t>(count);
    }
}

int listenOnServicePort() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(44444);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 128) != 0)
        throw std::runtime_error("port 44444 is not free");
    return listener;
}

}  // namespace

ScriptedService::ScriptedService(ServiceScript script) : m_script(std::move(script)) {
    m_listener = listenOnServicePort();
    if (pipe(m_stop) != 0) throw std::runtime_error("no pipe");
    m_thread = std::thread([this] { serve(); });
}

ScriptedService::~ScriptedService() { stop(); }

void ScriptedService::stop() {
    if (!m_thread.joinable()) return;
    close(m_stop[1]);
    m_thread.join();
    close(m_stop[0]);
    close(m_listener);
}

std::vector<std::string> ScriptedService::requests() {
    stop();
    return m_requests;
}

void ScriptedService::serve() {
    for (;;) {
        // A connection that is already there is served before the wish to stop is heard.
        pollfd events[] = {{m_listener, POLLIN, 0}, {m_stop[0], POLLIN, 0}};
        poll(events, 2, -1);
        if (events[0].revents == 0) return;
        const int peer = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (peer >= 0) serveOne(peer);
    }
}

void ScriptedService::serveOne(int peer) {
    std::string request = readUpTo(peer, m_script.requestSize);
    bool first = true;
    for (const std::string& segment : m_script.segments) {
        if (!first) request += readUpTo(peer, 1);
        sendAll(peer, segment);
        first = false;
    }
    if (m_script.resets) {
        const linger atOnce = {1, 0};
        setsockopt(peer, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    } else if (m_script.waitsForPeer) {
        request += readUpTo(peer, 4096);
    }
    m_requests.push_back(std::move(request));
    close(peer);
}
