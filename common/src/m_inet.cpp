#include "m_inet.h"

#include <bit>
#include <cstdio>

#include "LogRecord.h"

namespace {

constexpr int kMaxBytes = 16;

int refuse(const char* text, const SourcePlace& where = SourcePlace::current()) {
    writeLogRecord(1, where, "mask2plen", text);
    return -1;
}

// Without a text of its own: nothing here may raise.
int refuse(const char* what, int value, const SourcePlace& where = SourcePlace::current()) {
    char text[40];
    std::snprintf(text, sizeof text, "%s, %d", what, value);
    return refuse(text, where);
}

}  // namespace

int mask2plen(const unsigned char* mask, int byteCount, unsigned char* prefixLength) {
    if (mask == nullptr || prefixLength == nullptr) return refuse("Invalid parameter");
    if (byteCount < 0 || byteCount > kMaxBytes) return refuse("Incorrect byte count", byteCount);
    int length = 0;
    for (int i = 0; i < byteCount; ++i) {
        const int ones = std::countl_one(mask[i]);
        const bool zerosFollow = (mask[i] << ones & 0xff) == 0;
        if (!zerosFollow) return refuse("Invalid byte", mask[i]);
        length += ones;
    }
    *prefixLength = static_cast<unsigned char>(length);
    return 0;
}
