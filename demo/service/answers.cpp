#include "service/answers.h"

#include <chrono>
#include <thread>

std::string Answers::to(const std::string& command) {
    if (command == "WAIT") {
        // The page has nothing to ask: hold it for a moment instead of going round at full speed.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return to("TRAFFIC");
    }
    const std::lock_guard lock(mutex_);
    if (command == "TRAFFIC") {
        received_ += 14600;
        sent_ += 1460;
        return "&ssltraffic,v1," + std::to_string(received_) + "," + std::to_string(sent_);
    }
    if (command == "INFO" || command == "INFO&JS") {
        return "&sslinfo,v1," + state_ + ",10.8.0.17,255.255.255.0";
    }
    if (command == "LOGGING,0" || command == "LOGGING,1") {
        return command == "LOGGING,0" ? "LOGGING_DISABLE" : "LOGGING_ENABLE";
    }
    if (command == "CONNECT") {
        state_ = "connecting";
    } else if (command == "STATUS") {
        state_ = "connected";
    } else if (command == "DISCONNECT") {
        state_ = "disconnected";
    } else {
        return "&sslerror,v1,unknown command";
    }
    return "&sslsetstatus,v1," + state_ + ",0";
}
