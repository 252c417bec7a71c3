#pragma once

#include <climits>

#include "URaise.h"

/// Narrowing of numbers with their range checked. Each function returns the value unchanged, or
/// raises `UException` when the narrower type does not hold it. Stateless, for any thread.

/// @return `value`, which must not be negative.
inline unsigned int IntToUINT32(int value) {
    if (value < 0) URaise("IntToUINT32()", "IntToUINT32()", "input value is negative");
    return static_cast<unsigned int>(value);
}

/// @return `value`, which must not be above 65535.
inline unsigned short UINT64ToUINT16(unsigned long long value) {
    if (value > USHRT_MAX) {
        URaise("UINT64ToUINT16()", "UINT64ToUINT16()", "input value is greater then UINT16_MAX");
    }
    return static_cast<unsigned short>(value);
}

/// @return `value`, which must fit 32 bits.
inline int INT64ToINT32(long long value) {
    if (value > INT_MAX) {
        URaise("INT64ToINT32()", "INT64ToINT32()", "input value is greater then INT32_MAX");
    }
    if (value < INT_MIN) {
        URaise("INT64ToINT32()", "INT64ToINT32()", "input value is less then INT32_MIN");
    }
    return static_cast<int>(value);
}

/// @return `value`, which must be 0 to 255. The messages name another function; kept on purpose.
inline unsigned char IntToBYTE(int value) {
    if (value < 0) URaise("IntToDWORD()", "IntToDWORD()", "input value is negative");
    if (value > UCHAR_MAX) {
        URaise("IntToDWORD()", "IntToDWORD()", "input value is greater then BYTE_MAX");
    }
    return static_cast<unsigned char>(value);
}
