#pragma once

#include <string>
#include <vector>

/// What this thread asks of the C library about sockets while the object lives. For programs that
/// link the plug-in's object files, with the linker sending the calls through here.
class SocketCalls {
  public:
    SocketCalls();
    SocketCalls(const SocketCalls&) = delete;
    SocketCalls& operator=(const SocketCalls&) = delete;
    ~SocketCalls();

    /// Every call in order, as "name(argument, ...)" without its descriptor.
    std::vector<std::string> made;
};
