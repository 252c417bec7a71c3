#pragma once

#include <string>
#include <string_view>

// How the programs of the demo tell what they see: one datagram for each step of the conversation,
// sent before the step has its effect, so that the teller's order is the order of the causes.

/// One step: who says what to whom.
struct Step {
    std::string who;
    std::string whom;
    std::string what;

    /// "who -> whom: what", the form in which scenarios expect it.
    std::string line() const;
};

/// The text itself up to 200 bytes; of a longer one its first 40 bytes, its length and its FNV-1a
/// hash, which tell it from any other.
std::string gist(std::string_view text);

/// The far end of a witness: opens the socket that all witnesses of this machine send to.
/// Throws std::system_error when it cannot. To be used from one thread.
class WitnessStand {
  public:
    WitnessStand();
    ~WitnessStand();
    WitnessStand(const WitnessStand&) = delete;
    WitnessStand& operator=(const WitnessStand&) = delete;

    /// Readable whenever a step waits.
    int descriptor() const { return socket_; }

    /// Takes the oldest waiting step; false when none waits.
    bool take(Step& step);

  private:
    int socket_;
};

/// Sends the step to the stand; without a stand nothing happens. Any thread may call it.
void testify(const Step& step);
