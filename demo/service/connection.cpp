#include "service/connection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <thread>

#include "witness/witness.h"

namespace {

void tell(const std::string& what) { testify({"service", "plug-in", what}); }

std::string response(int status, std::size_t length) {
    std::array<char, 96> head{};
    std::snprintf(head.data(), head.size(),
                  "HTTP/1.1 %d Answer\r\nContent-Type: text/plain\r\nContent-Length: %zu\r\n\r\n",
                  status, length);
    return head.data();
}

std::string digits(std::size_t length) {
    std::string text;
    text.reserve(length);
    for (std::size_t at = 0; at < length; ++at) {
        text += static_cast<char>('0' + at % 10);
    }
    return text;
}

}  // namespace

Connection::Connection(int socket, Answers& answers, Behaviour& behaviour)
    : socket_(socket), answers_(answers), behaviour_(behaviour) {}

Connection::~Connection() { close(socket_); }

std::string Connection::Request::command() const { return query.substr(0, query.find("&z=")); }

void Connection::serve() {
    for (Request request; read(request);) {
        std::string asked = "?";
        asked += gist(request.query);
        if (request.zerosBehind > 0) {
            asked += " (own socket, " + std::to_string(request.zerosBehind) + " zero bytes behind)";
        }
        testify({"plug-in", "service", asked});
        if (!answer(request)) {
            return;
        }
    }
}

bool Connection::read(Request& request) {
    std::size_t end = 0;
    while ((end = unread_.find("\r\n\r\n")) == std::string::npos) {
        std::array<char, 65536> block;
        const ssize_t count = recv(socket_, block.data(), block.size(), 0);
        if (count <= 0) {
            return false;
        }
        unread_.append(block.data(), static_cast<std::size_t>(count));
    }
    const std::string path = "GET /vpn.php?";
    if (!unread_.starts_with(path)) {
        send(response(404, 0));
        return false;
    }
    request.query = unread_.substr(path.size(), unread_.find(' ', path.size()) - path.size());
    unread_.erase(0, end + 4);
    request.zerosBehind = std::min(unread_.find_first_not_of('\0'), unread_.size());
    unread_.erase(0, request.zerosBehind);
    return true;
}

bool Connection::answer(const Request& request) {
    const std::string command = request.command();
    const Rule rule = behaviour_.next(request.zerosBehind > 0 ? "own:" + command : command);
    if (rule.action == "delay") {
        std::this_thread::sleep_for(std::chrono::milliseconds(rule.number()));
    } else if (rule.action == "say") {
        return sendBody(rule.argument);
    } else if (rule.action == "fill") {
        return sendBody(digits(static_cast<std::size_t>(rule.number())));
    } else if (!rule.action.empty() && rule.action != "usual") {
        return answerBadly(rule, command);
    }
    return sendBody(answers_.to(command));
}

bool Connection::answerBadly(const Rule& rule, const std::string& command) {
    if (rule.action == "status") {
        tell("(HTTP status " + rule.argument + ")");
        return send(response(rule.number(), 9) + "not today");
    }
    if (rule.action == "last-words") {
        sendBody(rule.argument);
        _exit(0);
    }
    if (rule.action == "hold") {
        tell("(no answer)");
        waitUntilClosed();
    } else if (rule.action == "stall") {
        tell("(stops after " + rule.argument + " of 100000 bytes)");
        send(response(200, 100000) + digits(static_cast<std::size_t>(rule.number())));
        waitUntilClosed();
    } else if (rule.action == "raw") {
        tell("(raw bytes) " + gist(rule.argument));
        send(rule.argument);
    } else if (rule.action == "cut") {
        tell("(closes after " + rule.argument + " of 100000 bytes)");
        send(response(200, 100000) + digits(static_cast<std::size_t>(rule.number())));
    } else if (rule.action == "die") {
        tell("(ends without an answer)");
        _exit(1);
    } else {
        tell(rule.action == "hang-up" ? "(hangs up)" : "(no such rule for " + command + ")");
    }
    return false;
}

void Connection::waitUntilClosed() const {
    char byte = 0;
    while (recv(socket_, &byte, 1, 0) > 0) {
    }
}

bool Connection::sendBody(const std::string& body) const {
    tell(gist(body));
    return send(response(200, body.size()) + body);
}

bool Connection::send(const std::string& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count =
            ::send(socket_, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return true;
}
