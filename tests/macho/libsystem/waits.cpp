#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>

#include "symbol_table.h"

// What a std::atomic waits with: the kernel's waits for a word to change, as Darwin's published
// <sys/ulock.h> numbers them.

namespace macho::libsystem {

namespace {

constexpr std::uint32_t kKind = 0xFF;
constexpr std::uint32_t kCompare64 = 5;
constexpr std::uint32_t kWakeAll = 0x100;
constexpr std::uint32_t kReturnErrors = 0x01000000;

int answer(long result, std::uint32_t operation) {
    if (result >= 0) return 0;
    return (operation & kReturnErrors) != 0 ? -errno : -1;
}

// This system's kernel looks at 32 bits; of a longer word the lower half changes with every count.
int waitForWord(std::uint32_t operation, void* word, std::uint64_t value,
                std::uint32_t microseconds) {
    if ((operation & kKind) == kCompare64 &&
        static_cast<std::atomic<std::uint64_t>*>(word)->load() != value)
        return 0;
    const timespec time = {microseconds / 1'000'000, microseconds % 1'000'000 * 1000L};
    return answer(syscall(SYS_futex, word, FUTEX_WAIT_PRIVATE, static_cast<std::uint32_t>(value),
                          microseconds != 0 ? &time : nullptr, nullptr, 0),
                  operation);
}

int wakeForWord(std::uint32_t operation, void* word, std::uint64_t /*value*/) {
    const int count = (operation & kWakeAll) != 0 ? INT32_MAX : 1;
    return answer(syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0),
                  operation);
}

}  // namespace

void addWaits(SymbolTable& table) {
    table.addCall("___ulock_wait", waitForWord);
    table.addCall("___ulock_wake", wakeForWord);
}

}  // namespace macho::libsystem
