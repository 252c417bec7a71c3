#pragma once

#include <array>
#include <charconv>
#include <string_view>

#include "createString.h"

/// A message template with placeholders "%0" to "%9", filled by chained calls of `arg`:
///
///     StrFormat("%1 of %2").arg(3).arg(7)     // "3 of 7"
///
/// Each value fills every place of the lowest number that is left, wherever that stands; a value's
/// own text is never taken for a placeholder. "%%" is a literal percent sign, and only one digit
/// counts: "%12" is "%1" and a "2". A value for which no place is left is dropped, or appended.
///
/// An object belongs to one thread at a time. The text it converts to is its own and stays good
/// until the next value or assignment. No operation raises anything of its own; a value for which
/// there is no memory (`std::bad_alloc`) can be given again.
class StrFormat {
  public:
    /// The placeholders that the next value fills.
    struct Placeholder {
        int digit;  ///< the lowest number present, if count is not 0
        int count;  ///< how often it occurs
    };

    /// A template; null counts as "".
    StrFormat(const char* text);
    /// A template converted by `createString`; null counts as "".
    StrFormat(const wchar_t* text);
    StrFormat(const CString& text);
    /// Takes the other's template over, but not whether values are appended.
    StrFormat(const StrFormat& other);
    /// As above; nothing happens when both give the same text.
    StrFormat& operator=(const StrFormat& other);
    ~StrFormat() = default;

    /// @return whether the finished text equals `text`; null counts as "".
    bool operator==(const char* text) const;
    /// @return the finished text: unfilled placeholders stand as they are.
    operator const char*() const;

    /// From now on, a value for which no placeholder is left is appended behind ", ". A text that
    /// has been read before such a value does not show it, on purpose.
    void AppendIfNoPlaceholder(bool on) { m_appendIfNoPlaceholder = on; }

    /// Fills the next placeholder with `createString(value)`. @return the object itself, here and
    /// below.
    template <typename T>
    StrFormat& arg(const T& value) {
        const ArgText text(value);
        return text.IsDigits() ? Fill(text.View()) : EscapeAndFill(text.View());
    }
    /// Fills the next placeholder with `toHex(value)`.
    StrFormat& argHex(unsigned long long value) { return ReplaceArgEscapes(toHex(value)); }

    /// Fills the next placeholder with `value` as it is.
    StrFormat& ReplaceArgEscapes(const CString& value);
    /// @return what the next value fills.
    Placeholder FindArgEscapes() const;
    /// Puts `value`, in which percent signs are doubled already, in every place of `digit`. A text
    /// that has been read stays as it was read until the next `arg`.
    void ReplacePositionalArgs(int digit, const CString& value);

  private:
    // createString(value), without a text of its own where the value is one or has few digits.
    class ArgText {
      public:
        ArgText(const CString& text) : m_view(viewOf(text)) {}
        ArgText(const char* text) : m_view(text == nullptr ? "" : text) {}
        ArgText(int value) : m_view(Digits(value)) {}
        ArgText(unsigned int value) : m_view(Digits(value)) {}
        ArgText(unsigned char value) : m_view(Digits(static_cast<unsigned int>(value))) {}
        ArgText(long value) : m_view(Digits(static_cast<int>(value))) {}
        template <typename T>
        ArgText(const T& value) : m_text(createString(value)), m_view(viewOf(m_text)) {}
        ArgText(const ArgText&) = delete;
        ArgText& operator=(const ArgText&) = delete;

        std::string_view View() const { return m_view; }
        bool IsDigits() const { return m_view.data() == m_digits; }

      private:
        template <typename Number>
        std::string_view Digits(Number value) {
            return {m_digits, std::to_chars(m_digits, m_digits + sizeof m_digits, value).ptr};
        }

        CString m_text;
        char m_digits[12];
        std::string_view m_view;
    };

    static std::string_view viewOf(const CString& text) {
        return {text, static_cast<std::size_t>(text.GetLength())};
    }

    // Where one placeholder stands, so that filling does not search the template again.
    struct Places {
        int count = 0;
        int first = 0;
    };

    StrFormat& EscapeAndFill(std::string_view value);
    StrFormat& Fill(std::string_view value);
    void FillPlaces(const Placeholder& next, std::string_view value);
    void KeepTextRead();
    void FindPlaces();
    char* MakeRoom(std::size_t length);
    void ReplaceOnly(int digit, std::string_view value);
    void ReplaceAll(int digit, std::string_view value);

    CString m_template;
    mutable CString m_rendered;
    bool m_appendIfNoPlaceholder = false;
    // Whether the template holds "%%". Without, it is its own finished text.
    bool m_hasEscapes = false;
    mutable bool m_templateRead = false;
    std::array<Places, 10> m_places;
};

/// A template filled with `values` in order; those for which it has no place are appended.
template <typename Template, typename... Values>
StrFormat sfmt(const Template& text, const Values&... values) {
    StrFormat message(text);
    message.AppendIfNoPlaceholder(true);
    (message.arg(values), ...);
    return message;
}
