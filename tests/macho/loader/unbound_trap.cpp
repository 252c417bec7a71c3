#include "unbound_trap.h"

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "cursor.h"

namespace macho {

namespace {

constexpr std::size_t kPageBytes = 4096;
constexpr std::size_t kTrapBytes = 32;

[[noreturn]] void reportUnbound(const char* name) {
    std::fprintf(stderr, "the image calls %s, which has no stand-in\n", name);
    std::abort();
}

// Code that puts the name into the first argument's register and jumps to the report. Both
// addresses stand behind or inside the instructions.
void writeTrap(std::uint8_t* code, const char* name) {
    using Report = void (*)(const char*);
    const Report report = reportUnbound;
#if defined(__aarch64__)
    store(code, 0x58000080U);       // ldr x0, code + 16
    store(code + 4, 0x580000B0U);   // ldr x16, code + 24
    store(code + 8, 0xD61F0200U);   // br x16
    store(code + 12, 0xD503201FU);  // nop
    store(code + 16, name);
    store(code + 24, report);
#else
    store(code, std::uint16_t{0xBF48});  // mov rdi, name
    store(code + 2, name);
    store(code + 10, std::uint16_t{0xB848});  // mov rax, report
    store(code + 12, report);
    store(code + 20, std::uint16_t{0xE0FF});  // jmp rax
#endif
    __builtin___clear_cache(reinterpret_cast<char*>(code),
                            reinterpret_cast<char*>(code + kTrapBytes));
}

}  // namespace

void* makeUnboundTrap(const std::string& name) {
    static std::uint8_t* page = nullptr;
    static std::size_t used = kPageBytes;
    if (used + kTrapBytes > kPageBytes) {
        void* room = mmap(nullptr, kPageBytes, PROT_READ | PROT_WRITE | PROT_EXEC,
                          MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (room == MAP_FAILED) throw ImageError("there is no room for traps");
        page = static_cast<std::uint8_t*>(room);
        used = 0;
    }
    std::uint8_t* trap = page + used;
    used += kTrapBytes;
    writeTrap(trap, strdup(name.c_str()));  // both live as long as the process
    return trap;
}

}  // namespace macho
