#include "LogClock.h"

#include <pthread.h>
#include <sys/time.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

// A thread's last second as text, up to the colon before the milliseconds, and what else is asked
// for once a thread. Without destructors, for the module may be unloaded before its threads end.
struct ThreadClock {
    time_t second;
    std::array<char, LogMoment::kMaxLength> text;
    std::size_t timeAt;
    std::size_t length;  // 0 while no second is known
    uint64_t threadId;   // 0 while unknown
    long utcOffset;
    bool isForkedChild;
};

constinit thread_local ThreadClock t_clock{};

// The local time without the C library, by the offset that was valid at the fork.
tm timeAtOffset(time_t second, long utcOffset) {
    using namespace std::chrono;
    const sys_seconds local{seconds{second + utcOffset}};
    const auto day = floor<days>(local);
    const year_month_day date{day};
    const hh_mm_ss clock{local - day};
    tm result{};
    result.tm_year = static_cast<int>(date.year()) - 1900;
    result.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    result.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    result.tm_hour = static_cast<int>(clock.hours().count());
    result.tm_min = static_cast<int>(clock.minutes().count());
    result.tm_sec = static_cast<int>(clock.seconds().count());
    return result;
}

bool toLocalTime(ThreadClock& clock, time_t second, tm& local) {
    if (clock.isForkedChild) {
        local = timeAtOffset(second, clock.utcOffset);
        return true;
    }
    if (localtime_r(&second, &local) == nullptr) return false;
    clock.utcOffset = local.tm_gmtoff;
    return true;
}

// Makes `second` the one that the thread knows.
void learnSecond(ThreadClock& clock, time_t second) {
    clock.length = 0;
    tm local{};
    if (!toLocalTime(clock, second, local)) return;
    char* const text = clock.text.data();
    const std::size_t size = clock.text.size();
    const int date = snprintf(text, size, "%04lld-%02d-%02d,", local.tm_year + 1900LL,
                              local.tm_mon + 1, local.tm_mday);
    clock.timeAt = static_cast<std::size_t>(date);
    const int time = snprintf(text + date, size - clock.timeAt, "%2d:%02d:%02d:", local.tm_hour,
                              local.tm_min, local.tm_sec);
    clock.second = second;
    clock.length = clock.timeAt + static_cast<std::size_t>(time);
}

}  // namespace

LogMoment::LogMoment() {
    timeval now{};
    gettimeofday(&now, nullptr);
    ThreadClock& clock = t_clock;
    if (clock.length == 0 || clock.second != now.tv_sec) learnSecond(clock, now.tv_sec);
    if (clock.length == 0) return;
    std::memcpy(m_text.data(), clock.text.data(), clock.text.size());
    const auto millisecond = static_cast<unsigned>(now.tv_usec / 1000);
    char* const end = m_text.data() + clock.length;
    end[0] = static_cast<char>('0' + millisecond / 100 % 10);
    end[1] = static_cast<char>('0' + millisecond / 10 % 10);
    end[2] = static_cast<char>('0' + millisecond % 10);
    m_timeAt = clock.timeAt;
    m_length = clock.length + 3;
}

uint64_t logThreadId() {
    ThreadClock& clock = t_clock;
    if (clock.threadId == 0) pthread_threadid_np(pthread_t{}, &clock.threadId);
    return clock.threadId;
}

void prepareLogClockForFork() {
    t_clock.length = 0;
    [[maybe_unused]] const LogMoment now;
}

void renewLogClockInChild() {
    t_clock.threadId = 0;
    t_clock.isForkedChild = true;
}
