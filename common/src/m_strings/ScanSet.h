#pragma once

#include <bitset>
#include <optional>

/// The set of a conversion "%[...]" of the C library's `sscanf`: a "^" in front negates it, a "]"
/// in front is a member, and "a-z" is a range unless it runs downwards. Stateless once made.
class ScanSet {
  public:
    /// @return the set that `text` spells from "[" to "]"; nothing when it is anything else.
    static std::optional<ScanSet> parse(const char* text);

    /// @return the length of the run of members that `text` begins with.
    std::size_t runOf(const char* text) const;

  private:
    ScanSet() = default;
    const char* addMember(const char* at, const char* first);

    std::bitset<256> m_members;
};
