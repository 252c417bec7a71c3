#include "host/page_server.h"

#include <stdexcept>

PageServer::PageServer(const std::string& folder) {
    // Headers and body leave in two writes: without this the second waits for the first one's
    // acknowledgement.
    server_.set_tcp_nodelay(true);
    server_.set_mount_point("/", folder);
    server_.Get("/case", [this](const httplib::Request&, httplib::Response& response) {
        const std::lock_guard lock(mutex_);
        response.set_content(case_, "text/html; charset=utf-8");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    if (port_ < 0) {
        throw std::runtime_error("the portal's web server got no port");
    }
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) {
        std::this_thread::yield();
    }
}

PageServer::~PageServer() {
    server_.stop();
    thread_.join();
}

std::string PageServer::root() const { return "http://127.0.0.1:" + std::to_string(port_); }

void PageServer::setCase(std::string html) {
    const std::lock_guard lock(mutex_);
    case_ = std::move(html);
}
