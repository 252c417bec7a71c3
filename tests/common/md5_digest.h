#pragma once

/// Texts to hash and their digests.

#include <array>
#include <string_view>

#include "CMD5.h"
#include "text_bytes.h"

using Digest = std::array<unsigned char, 16>;

inline Digest hashOf(std::string_view text) {
    CMD5 md5;
    Digest digest;
    md5.HashBuffer(digest.data(), bytesOf(text), static_cast<int>(text.size()));
    return digest;
}

inline Digest finish(CHash& hash) {
    Digest digest;
    hash.Final(digest.data());
    return digest;
}
