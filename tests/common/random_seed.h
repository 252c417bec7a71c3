#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Where the random tests start: ZERVA_TEST_SEED when that is set, a fixed number otherwise;
/// printed so that a failure can be repeated.
inline std::uint32_t randomSeed() {
    const char* const given = getenv("ZERVA_TEST_SEED");
    const std::uint32_t seed =
        given == nullptr ? 20240229U : static_cast<std::uint32_t>(strtoul(given, nullptr, 0));
    printf("ZERVA_TEST_SEED=%u\n", seed);
    return seed;
}

/// How often a random test goes round: `full` times, and a twentieth of that in a build that a
/// sanitizer slows down.
constexpr int randomRounds(int full) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return full / 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return full / 20;
#else
    return full;
#endif
#else
    return full;
#endif
}
