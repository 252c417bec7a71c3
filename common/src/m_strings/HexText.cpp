#include "HexText.h"

#include <array>
#include <cstring>

#include "TextLength.h"

namespace {

constexpr char kLowerDigits[] = "0123456789abcdef";
constexpr char kUpperDigits[] = "0123456789ABCDEF";

// Both digits of every byte, one behind the other.
constexpr auto kLowerPairs = [] {
    std::array<char, 512> pairs{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        pairs[2 * byte] = kLowerDigits[byte / 16];
        pairs[2 * byte + 1] = kLowerDigits[byte % 16];
    }
    return pairs;
}();

char* putByte(char* to, unsigned char byte) {
    std::memcpy(to, &kLowerPairs[2u * byte], 2);
    return to + 2;
}

// The layout of a dump: a line's bytes stand in two groups, each column behind a group has its
// separator, and the hexadecimal column is as wide on the last line as on a full one.
constexpr unsigned int kBytesPerGroup = 8;
constexpr unsigned int kBytesPerLine = 2 * kBytesPerGroup;
constexpr std::size_t kHexColumn = kBytesPerLine * 3 + 4;
constexpr std::size_t kFullLine = kHexColumn + 2 + kBytesPerLine + 2 + 1;

std::size_t lastLineLength(unsigned int count) {
    if (count == 0) return 0;
    return kHexColumn + 2 + count + (count - 1) / kBytesPerGroup + 1;
}

char characterOf(unsigned char byte) {
    return byte >= 32 && byte <= 127 ? static_cast<char>(byte) : '.';
}

// Writes the line of `count` bytes; a full line, but not a last one, ends both of its columns with
// a separator.
char* dumpLine(char* to, const unsigned char* data, unsigned int count, bool last) {
    char* hex = to;
    char* text = to + kHexColumn + 2;
    std::memset(to, ' ', kHexColumn + 2);
    for (unsigned int i = 0; i < count; ++i) {
        if (i == kBytesPerGroup) {
            hex += 2;
            *text++ = ' ';
        }
        hex = putByte(hex, data[i]) + 1;
        *text++ = characterOf(data[i]);
    }
    if (!last) *text++ = ' ';
    *text++ = '\n';
    return text;
}

CString dump(const unsigned char* data, unsigned int len) {
    // A last line is never a full one with separators, even when it has all its bytes.
    const unsigned int fullLines = len == 0 ? 0 : (len - 1) / kBytesPerLine;
    const unsigned int rest = len - fullLines * kBytesPerLine;
    CString result;
    char* to = result.GetBufferSetLength(
        textLength(std::size_t{fullLines} * kFullLine + lastLineLength(rest)));
    for (unsigned int line = 0; line < fullLines; ++line, data += kBytesPerLine) {
        to = dumpLine(to, data, kBytesPerLine, false);
    }
    if (rest > 0) dumpLine(to, data, rest, true);
    return result;
}

// Converts pair i of `hex` to the byte at place(i), a function of i and the number of pairs.
template <class Place>
int hexToBin(const char* hex, unsigned char* out, unsigned int outSize, Place place) {
    const std::size_t count = hex != nullptr ? std::strlen(hex) / 2 : 0;
    if (count > (out != nullptr ? outSize : 0)) return -1;
    for (std::size_t i = 0; i < count; ++i) {
        unsigned char high = 0;
        unsigned char low = 0;
        if (!HexCharToNum(hex[2 * i], high) || !HexCharToNum(hex[2 * i + 1], low)) return -2;
        out[place(i, count)] = static_cast<unsigned char>(high << 4 | low);
    }
    return 0;
}

CString encode(const char* text, bool percent) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    CString result;
    char* to = result.GetBufferSetLength(textLength(length * (percent ? 3 : 2)));
    for (std::size_t i = 0; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (percent) *to++ = '%';
        *to++ = kUpperDigits[byte / 16];
        *to++ = kUpperDigits[byte % 16];
    }
    return result;
}

}  // namespace

bool HexCharToNum(char c, unsigned char& out) {
    int value = 0;
    if (c >= '0' && c <= '9') {
        value = c - '0';
    } else if (c >= 'a' && c <= 'f') {
        value = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
        value = c - 'A' + 10;
    } else {
        return false;
    }
    out = static_cast<unsigned char>(value);
    return true;
}

int HexToBin(const char* hex, unsigned char* out, unsigned int outSize) {
    return hexToBin(hex, out, outSize, [](std::size_t i, std::size_t) { return i; });
}

int HexToBinReverse(const char* hex, unsigned char* out, unsigned int outSize) {
    return hexToBin(hex, out, outSize, [](std::size_t i, std::size_t n) { return n - 1 - i; });
}

CString BinToHex(const unsigned char* data, unsigned int len, unsigned int flags) {
    if (data == nullptr) len = 0;
    if ((flags & kHexDump) != 0) return dump(data, len);
    const bool spaced = (flags & kHexSpaced) != 0;
    CString result;
    char* to = result.GetBufferSetLength(textLength(std::size_t{len} * (spaced ? 3 : 2)));
    for (unsigned int i = 0; i < len; ++i) {
        to = putByte(to, data[i]);
        if (spaced) *to++ = ' ';
    }
    return result;
}

CString encodeToHex(const char* text) { return encode(text, true); }

CString encodeToHexWithoutPercent(const char* text) { return encode(text, false); }
