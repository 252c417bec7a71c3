#pragma once

#include <array>
#include <cstdint>
#include <cstring>

/// @return where a virtual function stands in the table of its class, as the platform's C++
/// interface keeps it in a pointer to the member. The destructor takes two places.
template <typename Function>
std::uintptr_t slotOf(Function function) {
    std::array<std::uintptr_t, 2> words{};
    static_assert(sizeof words == sizeof function);
    std::memcpy(words.data(), &function, sizeof words);
    return (words[0] & ~std::uintptr_t{1}) / sizeof(void*);
}
