#include "signals.h"

#include <pthread.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

#include "errors.h"
#include "symbol_table.h"

namespace macho::libsystem {

namespace {

struct Pair {
    int host;
    int mac;
};

// <sys/signal.h> of both; the other signals bear the same numbers.
constexpr Pair kSignals[] = {{SIGBUS, 10},  {SIGUSR1, 30}, {SIGUSR2, 31}, {SIGCHLD, 20},
                             {SIGSTOP, 17}, {SIGTSTP, 18}, {SIGCONT, 19}, {SIGURG, 16},
                             {SIGIO, 23},   {SIGSYS, 12}};

// A set of signals: a Mac's is one word, a bit for each.
using MacSet = std::uint32_t;
constexpr int kMacSignals = 32;

sigset_t hostSet(MacSet set) {
    sigset_t result;
    sigemptyset(&result);
    for (int number = 1; number < kMacSignals; ++number)
        if ((set >> (number - 1) & 1) != 0) sigaddset(&result, hostSignal(number));
    return result;
}

MacSet macSet(const sigset_t& set) {
    MacSet result = 0;
    for (int number = 1; number < kMacSignals; ++number)
        if (sigismember(&set, hostSignal(number)) == 1) result |= MacSet{1} << (number - 1);
    return result;
}

// Counted from 1 on a Mac, from 0 here; the order is the same.
int setThreadMask(int how, const MacSet* set, MacSet* before) {
    const sigset_t wanted = hostSet(set != nullptr ? *set : 0);
    sigset_t old;
    const int error = pthread_sigmask(how - 1, set != nullptr ? &wanted : nullptr, &old);
    if (error == 0 && before != nullptr) *before = macSet(old);
    return macError(error);
}

int pendingSignals(MacSet* set) {
    sigset_t pending;
    if (sigpending(&pending) != 0) return -1;
    *set = macSet(pending);
    return 0;
}

int waitForSignal(const MacSet* set, int* number) {
    const sigset_t wanted = hostSet(*set);
    const int error = sigwait(&wanted, number);
    if (error == 0) *number = macSignal(*number);
    return macError(error);
}

int sendSignal(pid_t process, int number) { return kill(process, hostSignal(number)); }

int raiseSignal(int number) { return raise(hostSignal(number)); }

using Handler = void (*)(int);
Handler setHandler(int number, Handler handler) { return signal(hostSignal(number), handler); }

// A Mac's record: the handler, a mask and flags of 32 bits each.
struct MacAction {
    Handler handler;
    MacSet mask;
    std::int32_t flags;
};
static_assert(sizeof(MacAction) == 16);

int setAction(int number, const MacAction* action, MacAction* before) {
    struct sigaction wanted = {};
    if (action != nullptr) {
        wanted.sa_handler = action->handler;
        wanted.sa_mask = hostSet(action->mask);
    }
    struct sigaction old = {};
    if (sigaction(hostSignal(number), action != nullptr ? &wanted : nullptr, &old) != 0) return -1;
    if (before != nullptr) *before = {old.sa_handler, macSet(old.sa_mask), 0};
    return 0;
}

}  // namespace

int hostSignal(int macSignal) {
    for (const Pair& pair : kSignals)
        if (pair.mac == macSignal) return pair.host;
    return macSignal;
}

int macSignal(int hostSignal) {
    for (const Pair& pair : kSignals)
        if (pair.host == hostSignal) return pair.mac;
    return hostSignal;
}

void addSignals(SymbolTable& table) {
    table.addCall("_pthread_sigmask", setThreadMask);
    table.addCall("_sigpending", pendingSignals);
    table.addCall("_sigwait", waitForSignal);
    table.addCall("_kill", sendSignal);
    table.addCall("_raise", raiseSignal);
    table.addCall("_signal", setHandler);
    table.addCall("_sigaction", setAction);
}

}  // namespace macho::libsystem
