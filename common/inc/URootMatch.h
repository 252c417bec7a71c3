#pragma once

#include "CString.h"
#include "UObject.h"

/// A matcher: holds one pattern of its own kind, and says of texts and numbers whether they match.
///
/// The pattern is taken to pieces once, when it is set; a matcher whose pattern could not be set
/// has none and matches nothing. A null pattern counts as ""; a null candidate never matches.
///
/// Threads: several may match at once while none sets a pattern. Lack of memory is a failure of
/// `setPattern` where that can fail, and raises `std::bad_alloc` everywhere else.
class URootMatch : public UObject {
  public:
    URootMatch() = default;
    URootMatch(const URootMatch&) = delete;
    URootMatch& operator=(const URootMatch&) = delete;

    /// Replaces the pattern. A failure is logged. @return 0, or the failure's error code.
    virtual int setPattern(const char* text) = 0;

    /// @return the pattern as it was given, owned by the matcher; "" when there is none.
    virtual const char* getPattern() const = 0;

    /// @return whether `text` matches.
    virtual bool match(const char* text) const = 0;

    /// @return whether the number does.
    virtual bool matchAsDWORD(unsigned int value) const = 0;

    /// Writes a pattern of this kind, which need not be the matcher's own, in one fixed way to
    /// `out`. This one copies it.
    /// @param delimiter what stands between the patterns of an expression; nothing here needs it.
    /// @return 0; or the failure's error code, with `out` unchanged and the failure logged.
    virtual int normalize(const char* text, CString& out, char delimiter) const;

    /// @return a copy of the pattern.
    virtual CString toString() const = 0;
};
