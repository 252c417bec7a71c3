#pragma once

#include <climits>
#include <cstddef>
#include <stdexcept>

/// @return `length` as the length of a `CString`. Raises `std::length_error` when none is as long.
inline int textLength(std::size_t length) {
    if (length > INT_MAX) throw std::length_error("text is longer than 2 GiB");
    return static_cast<int>(length);
}
