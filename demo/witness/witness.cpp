#include "witness/witness.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace {

constexpr char kFieldEnd = '\x1f';

sockaddr_un standAddress() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof(address.sun_path), "/tmp/zerva-demo-witness");
    return address;
}

int openSocket() {
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "witness socket");
    }
    return descriptor;
}

}  // namespace

std::string Step::line() const { return who + " -> " + whom + ": " + what; }

std::string gist(std::string_view text) {
    if (text.size() <= 200) {
        return std::string(text);
    }
    std::uint32_t hash = 2166136261U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    std::array<char, 64> tail{};
    std::snprintf(tail.data(), tail.size(), "... (%zu bytes, %08x)", text.size(), hash);
    return std::string(text.substr(0, 40)) + tail.data();
}

WitnessStand::WitnessStand() : socket_(openSocket()) {
    const sockaddr_un address = standAddress();
    unlink(address.sun_path);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const int error = errno;
        close(socket_);
        throw std::system_error(error, std::generic_category(), address.sun_path);
    }
}

WitnessStand::~WitnessStand() {
    close(socket_);
    unlink(standAddress().sun_path);
}

bool WitnessStand::take(Step& step) {
    std::array<char, 4096> buffer;
    const ssize_t count = recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count < 0) {
        return false;
    }
    const std::string_view text(buffer.data(), static_cast<std::size_t>(count));
    const std::size_t first = text.find(kFieldEnd);
    const std::size_t second = text.find(kFieldEnd, first + 1);
    step = {std::string(text.substr(0, first)),
            std::string(text.substr(first + 1, second - first - 1)),
            std::string(text.substr(second + 1))};
    return true;
}

void testify(const Step& step) {
    const int descriptor = openSocket();
    const sockaddr_un address = standAddress();
    const std::string text = step.who + kFieldEnd + step.whom + kFieldEnd + step.what;
    sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&address),
           sizeof(address));
    close(descriptor);
}
