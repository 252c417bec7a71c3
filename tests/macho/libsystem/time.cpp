#include <sys/time.h>

#include <cstdint>
#include <ctime>

#include "symbol_table.h"

namespace macho::libsystem {

namespace {

// <time.h> of a Mac.
clockid_t hostClock(int clock) {
    switch (clock) {
        case 4:  // CLOCK_MONOTONIC_RAW, the same since the last start, and their approximations
        case 5:
        case 6:  // CLOCK_MONOTONIC
        case 8:
        case 9:
            return CLOCK_MONOTONIC;
        case 12:
            return CLOCK_PROCESS_CPUTIME_ID;
        case 16:
            return CLOCK_THREAD_CPUTIME_ID;
        default:
            return CLOCK_REALTIME;
    }
}

int readClock(int clock, timespec* time) { return clock_gettime(hostClock(clock), time); }

std::uint64_t ticks() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
           static_cast<std::uint64_t>(now.tv_nsec);
}

// The microseconds are a word of 32 bits there; what stands behind it means nothing.
struct MacInterval {
    std::int64_t seconds;
    std::int32_t microseconds;
};
struct MacTimer {
    MacInterval next;
    MacInterval value;
};
static_assert(sizeof(MacTimer) == 32);

timeval hostTime(const MacInterval& time) { return {time.seconds, time.microseconds}; }

int setTimer(int which, const MacTimer* timer, MacTimer* before) {
    const itimerval wanted = {hostTime(timer->next), hostTime(timer->value)};
    itimerval old;
    const int result = setitimer(static_cast<__itimer_which>(which), &wanted, &old);
    if (result != 0 || before == nullptr) return result;
    const auto macTime = [](const timeval& time) {
        return MacInterval{time.tv_sec, static_cast<std::int32_t>(time.tv_usec)};
    };
    *before = {macTime(old.it_interval), macTime(old.it_value)};
    return 0;
}

// A tick is a nanosecond.
int tickLength(std::uint32_t* fraction) {
    fraction[0] = fraction[1] = 1;
    return 0;
}

}  // namespace

void addTime(SymbolTable& table) {
    table.addCall("_clock_gettime", readClock);
    table.addCall("_setitimer", setTimer);
    table.addCall("_mach_absolute_time", ticks);
    table.addCall("_mach_timebase_info", tickLength);
}

}  // namespace macho::libsystem
