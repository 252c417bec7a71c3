#pragma once

/// Bytes, and the texts that they are coded as.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "CRFCBase64.h"
#include "text_bytes.h"
#include "text_of.h"

using ByteArray = CArray<unsigned char, unsigned char>;

inline std::string encoded(std::string_view bytes) {
    CString out;
    const int count = CRFCBase64::Encode(bytesOf(bytes), static_cast<int>(bytes.size()), out);
    EXPECT_EQ(count, out.GetLength());
    return textOf(out);
}

inline std::string contentOf(const ByteArray& array) {
    return {array.GetData(), array.GetData() + array.GetSize()};
}

inline std::string decoded(const char* text) {
    ByteArray bytes;
    const int count = CRFCBase64::Decode(text, bytes);
    EXPECT_EQ(count, bytes.GetSize());
    return contentOf(bytes);
}
