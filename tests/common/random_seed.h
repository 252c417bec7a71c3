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

/// Whether this build is slowed down, and its memory watched, by a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

/// How often a random test goes round: `full` times, and a twentieth of that under a sanitizer.
constexpr int randomRounds(int full) { return kSanitized ? full / 20 : full; }
