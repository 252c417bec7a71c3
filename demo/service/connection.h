#pragma once

#include <string>

#include "service/answers.h"
#include "service/behaviour.h"

// One HTTP connection to the service. Headers and body leave in one write: the plug-in's own
// requests read an answer once and use what that read returned, so a server that sends the two
// apart (as ready-made ones do) would lose its body.

class Connection {
  public:
    /// Owns `socket`.
    Connection(int socket, Answers& answers, Behaviour& behaviour);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Answers requests until either side closes.
    void serve();

  private:
    struct Request {
        std::string query;
        std::size_t zerosBehind = 0;
        std::string command() const;
    };

    bool read(Request& request);
    bool answer(const Request& request);
    bool answerBadly(const Rule& rule, const std::string& command);
    bool send(const std::string& bytes) const;
    void waitUntilClosed() const;
    bool sendBody(const std::string& body) const;

    int socket_;
    Answers& answers_;
    Behaviour& behaviour_;
    std::string unread_;
};
