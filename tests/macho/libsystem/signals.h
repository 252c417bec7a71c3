#pragma once

namespace macho::libsystem {

/// This system's number for one of a Mac's signals (<sys/signal.h> of both), and back.
int hostSignal(int macSignal);
int macSignal(int hostSignal);

}  // namespace macho::libsystem
