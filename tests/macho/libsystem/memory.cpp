#include <cstddef>
#include <cstdint>
#include <cstring>

#include "symbol_table.h"

namespace macho::libsystem {

namespace {

void zero(void* to, std::size_t size) { std::memset(to, 0, size); }

void fillWithSixteen(char* to, const char* pattern, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) to[i] = pattern[i % 16];
}

[[noreturn]] void reportSmashedStack() { __builtin_trap(); }

std::uintptr_t g_stackGuard = 0x7A39BD0000C1E500;

}  // namespace

void addMemory(SymbolTable& table) {
    table.addCall("___bzero", zero);
    table.addCall("_bzero", zero);
    table.addCall("_memset_pattern16", fillWithSixteen);
    table.addCall("___stack_chk_fail", reportSmashedStack);
    table.addVariable("___stack_chk_guard", &g_stackGuard);
}

}  // namespace macho::libsystem
