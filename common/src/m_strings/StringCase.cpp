#include "StringCase.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::uint64_t kEveryByte = 0x0101010101010101U;
constexpr std::uint64_t kCaseBit = 'a' - 'A';
// Texts are measured this far ahead of the comparison, so that an early difference stays cheap.
constexpr std::size_t kStretch = 256;

int folded(char ch) {
    const unsigned char byte = static_cast<unsigned char>(ch);
    return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
}

// 0 if eight bytes at `a` and at `b` are the same but for the case of ASCII letters.
std::uint64_t unlikeness(const char* a, const char* b) {
    std::uint64_t left;
    std::uint64_t right;
    memcpy(&left, a, sizeof left);
    memcpy(&right, b, sizeof right);
    const std::uint64_t difference = left ^ right;
    // The top bit of each byte tells, without a carry into its neighbour, whether the low seven
    // bits of the lower-case byte are at least 'a' and whether they are beyond 'z'.
    const std::uint64_t low = (left | kEveryByte * kCaseBit) & (kEveryByte * 0x7F);
    const std::uint64_t fromA = low + kEveryByte * (0x80 - 'a');
    const std::uint64_t beyondZ = low + kEveryByte * (0x80 - 'z' - 1);
    const std::uint64_t isLetter = fromA & ~beyondZ & ~left;
    return (difference & ~(kEveryByte * kCaseBit)) | ((difference << 2) & ~isLetter);
}

std::size_t sameFolded(const char* a, const char* b, std::size_t length) {
    std::size_t at = 0;
    const auto unlike = [&](std::size_t ahead) {
        return unlikeness(a + at + ahead, b + at + ahead);
    };
    // One branch for many bytes: the steps in between wait for nothing.
    while (at + 32 <= length && (unlike(0) | unlike(8) | unlike(16) | unlike(24)) == 0) at += 32;
    while (at + 8 <= length && unlike(0) == 0) at += 8;
    while (at < length && folded(a[at]) == folded(b[at])) ++at;
    return at;
}

}  // namespace

char* _strupr(char* text) {
    if (text == nullptr) return text;
    for (char* at = text; *at != '\0'; ++at) {
        const int byte = static_cast<unsigned char>(*at);
        if (islower(byte) != 0) *at = static_cast<char>(toupper(byte));
    }
    return text;
}

char* _strlwr(char* text) {
    if (text == nullptr) return text;
    for (char* at = text; *at != '\0'; ++at) {
        const int byte = static_cast<unsigned char>(*at);
        if (isupper(byte) != 0) *at = static_cast<char>(tolower(byte));
    }
    return text;
}

int _strcmpi(const char* a, const char* b) {
    if (a == nullptr) a = "";
    if (b == nullptr) b = "";
    for (;;) {
        const std::size_t stretch = std::min(strnlen(a, kStretch), strnlen(b, kStretch));
        const std::size_t same = sameFolded(a, b, stretch);
        a += same;
        b += same;
        if (same < kStretch) return folded(*a) - folded(*b);
    }
}

int _stricmp(const char* a, const char* b) { return _strcmpi(a, b); }
