#pragma once

#include <cstdint>
#include <mutex>
#include <string>

// What a well-behaved service answers: the demo's own small language between portal page and
// service. The plug-in between them reads nothing of it but the two logging words.

/// The state of the pretended tunnel. Any thread may call it.
class Answers {
  public:
    /// CONNECT, STATUS, TRAFFIC, WAIT, INFO, LOGGING,0, LOGGING,1, DISCONNECT; anything else is
    /// answered with an error text.
    std::string to(const std::string& command);

  private:
    std::mutex mutex_;
    std::string state_ = "idle";
    std::uint64_t received_ = 0;
    std::uint64_t sent_ = 0;
};
