#pragma once

#include <optional>

/// Candidates as the matchers read them, so that an expression reads one once for all its members.

/// @return the number that `text` is for `UDWORDMatch`.
std::optional<unsigned int> numberOf(const char* text);

/// @return the address that `text` is, the first octet in the highest byte.
std::optional<unsigned int> addressOf(const char* text);

/// What `UTCPMatch` reads of "address:port".
struct UEndpointText {
    /// Nothing of a text that has not exactly two parts; null has none.
    explicit UEndpointText(const char* text);

    std::optional<unsigned int> address;
    std::optional<unsigned int> port;
};
