#pragma once

#include "UList.h"
#include "URootMatch.h"
#include "UStrings.h"

/// A list of matchers of one kind, made from an expression such as "10.0.0.0/8, 192.168.0.0/16".
/// A candidate matches when it matches any of them; they are asked in the expression's order.
///
/// The object owns its matchers. Null texts count as "" in an expression and never match. Threads:
/// several may match at once while none sets an expression. Lack of memory raises `std::bad_alloc`
/// unless said otherwise.
class UExpressionMatch {
  public:
    /// The kinds of matchers.
    static constexpr unsigned int kPattern = 0;  ///< `UPatternMatch`
    static constexpr unsigned int kNumber = 1;   ///< `UDWORDMatch`
    static constexpr unsigned int kSubnet = 2;   ///< `UIPSubnetMatch`
    static constexpr unsigned int kTcp = 3;      ///< `UTCPMatch`
    static constexpr unsigned int kDns = 4;      ///< `UDNSMatch`

    /// No expression: matches nothing.
    UExpressionMatch() = default;
    /// As `setExpression`; one that cannot be set leaves none, and `getExpression` is "".
    explicit UExpressionMatch(const char* expression, unsigned int type = kPattern,
                              char delimiter = ',');
    ~UExpressionMatch();
    UExpressionMatch(const UExpressionMatch&) = delete;
    UExpressionMatch& operator=(const UExpressionMatch&) = delete;

    /// Replaces all matchers by those of `expression`: the patterns between the delimiters, without
    /// blanks around them and without empty ones, each in its kind's normal form. A failure, lack
    /// of memory too, is logged and leaves no expression.
    /// @param type the kind of all of them.
    /// @return 0, or the failure's error code.
    int setExpression(const char* expression, unsigned int type, char delimiter);

    /// @return the patterns in normal form with the delimiter between them, owned by the object;
    /// "" when there is no expression.
    const char* getExpression() const { return m_expression; }

    /// @return a new matcher, which belongs to the caller; one without a pattern for null. Raises
    /// `UException` for a kind that there is not and for what is no pattern of it.
    static URootMatch* createMatchObject(unsigned int type, const char* pattern);

    /// @return whether any matcher matches.
    bool match(const char* text) const;
    bool matchAsDWORD(unsigned int value) const;

    /// As above, and `hits` becomes the patterns of all that do. `text` may be one of its items. A
    /// hit for which there is no memory is left out, and that is logged.
    bool match(const char* text, UStrings& hits) const;
    bool matchAsDWORD(unsigned int value, UStrings& hits) const;

    /// @return each matcher's pattern and a line feed.
    CString toString() const;

  private:
    void Clear();
    void AddMatchers(const char* normal, unsigned int type, char delimiter);
    const char* PatternAt(int index) const;

    template <class Match, class Matches, class Found>
    bool Ask(const Matches& matches, const Found& found) const;
    template <class Found>
    bool Find(const char* text, const Found& found) const;
    template <class Found>
    bool Find(unsigned int value, const Found& found) const;

    int m_type = -1;
    UList m_matchers;
    CString m_expression;
};
