#pragma once

#include <cstdint>

// What differs between the two kinds of Mac, for the processor that this program is built for:
// numbers of <mach/machine.h>.

namespace macho {

#if defined(__aarch64__)
inline constexpr std::uint32_t kCpuType = 0x0100000C;
inline constexpr std::uint32_t kForeignSubtype = 2;  // arm64e: another way of calling
inline constexpr std::uint64_t kPageSize = 0x4000;
inline constexpr char kCpuName[] = "arm64";
#else
inline constexpr std::uint32_t kCpuType = 0x01000007;
inline constexpr std::uint32_t kForeignSubtype = ~0U;
inline constexpr std::uint64_t kPageSize = 0x1000;
inline constexpr char kCpuName[] = "x86_64";
#endif

}  // namespace macho
