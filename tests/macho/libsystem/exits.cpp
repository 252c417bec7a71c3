#include "exits.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "symbol_table.h"

// The C++ runtime's own way to be called at the end of a thread (glibc 2.18).
extern "C" int __cxa_thread_atexit_impl(void (*)(void*), void*, void*);

namespace macho::libsystem {

namespace {

// What __cxa_atexit is given (Itanium C++ ABI, 3.3.6.3).
struct ExitFunction {
    void (*run)(void*);
    void* argument;

    bool liesIn(const void* begin, const void* end) const {
        const auto address = reinterpret_cast<std::uintptr_t>(run);
        return address >= reinterpret_cast<std::uintptr_t>(begin) &&
               address < reinterpret_cast<std::uintptr_t>(end);
    }
};

std::mutex g_lock;
std::vector<ExitFunction> g_functions;
std::atomic<bool> g_hasThreadExits = false;

void runAll() { runExitFunctions(nullptr, reinterpret_cast<void*>(UINTPTR_MAX)); }

int atExit(void (*run)(void*), void* argument, void* /*image*/) {
    static const int registered = std::atexit(runAll);
    const std::lock_guard guard(g_lock);
    g_functions.push_back({run, argument});
    return registered;
}

int plainAtExit(void (*run)()) {
    return atExit(reinterpret_cast<void (*)(void*)>(reinterpret_cast<void*>(run)), nullptr,
                  nullptr);
}

void atThreadExit(void (*run)(void*), void* object) {
    g_hasThreadExits = true;
    __cxa_thread_atexit_impl(run, object, &g_hasThreadExits);
}

[[noreturn]] void failAssertion(const char* function, const char* file, int line,
                                const char* expression) {
    std::fprintf(stderr, "%s:%d: %s: %s does not hold\n", file, line, function, expression);
    std::abort();
}

[[noreturn]] void bindLazily() {
    std::fprintf(stderr, "the image asks for a lazy binding that was made at load\n");
    std::abort();
}

}  // namespace

void runExitFunctions(const void* begin, const void* end) {
    for (;;) {
        std::unique_lock guard(g_lock);
        const auto newest =
            std::find_if(g_functions.rbegin(), g_functions.rend(),
                         [=](const ExitFunction& each) { return each.liesIn(begin, end); });
        if (newest == g_functions.rend()) return;
        const ExitFunction function = *newest;
        g_functions.erase(std::next(newest).base());
        guard.unlock();
        function.run(function.argument);
    }
}

bool hasThreadExitFunctions() { return g_hasThreadExits; }

void addExits(SymbolTable& table) {
    table.addCall("___cxa_atexit", atExit);
    table.addCall("_atexit", plainAtExit);
    table.addCall("__tlv_atexit", atThreadExit);
    table.addCall("_exit", std::exit);
    table.addCall("___assert_rtn", failAssertion);
    table.addCall("dyld_stub_binder", bindLazily);
}

}  // namespace macho::libsystem
