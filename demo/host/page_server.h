#pragma once

#include <httplib.h>

#include <mutex>
#include <string>
#include <thread>

/// The portal's web server on loopback: the folder's files, and one page of the scenario's own at
/// "/case". Runs on a thread of its own from construction to destruction.
class PageServer {
  public:
    /// Throws std::runtime_error when no port can be had.
    explicit PageServer(const std::string& folder);
    ~PageServer();
    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;

    /// "http://127.0.0.1:PORT" without a slash behind.
    std::string root() const;

    /// What "/case" holds from now on.
    void setCase(std::string html);

  private:
    httplib::Server server_;
    int port_;
    std::mutex mutex_;
    std::string case_;
    std::thread thread_;
};
