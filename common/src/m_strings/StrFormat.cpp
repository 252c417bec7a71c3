#include "StrFormat.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <span>
#include <utility>

#include "TextLength.h"

namespace {

// Room kept behind a template, so that filling it seldom moves it.
constexpr std::size_t kSpareRoom = 128;

// Calls `onEscape(index)` for each "%%" of `text` and `onPlaceholder(index, digit)` for each
// placeholder.
template <typename OnEscape, typename OnPlaceholder>
void forEachPercent(std::string_view text, OnEscape onEscape, OnPlaceholder onPlaceholder) {
    for (std::size_t at = 0; at + 1 < text.length(); ++at) {
        if (text[at] != '%') continue;
        const char next = text[at + 1];
        if (next == '%') {
            onEscape(at++);
        } else if (next >= '0' && next <= '9') {
            onPlaceholder(at++, next - '0');
        }
    }
}

}  // namespace

StrFormat::StrFormat(const char* text) {
    if (text == nullptr) return;
    const std::size_t length = strlen(text);
    memcpy(MakeRoom(length), text, length);
    m_template.ReleaseBuffer(static_cast<int>(length));
    FindPlaces();
}

StrFormat::StrFormat(const wchar_t* text) : StrFormat(createString(text)) {}

StrFormat::StrFormat(const CString& text) : m_template(text) { FindPlaces(); }

StrFormat::StrFormat(const StrFormat& other)
    : m_template(other.m_template), m_hasEscapes(other.m_hasEscapes), m_places(other.m_places) {}

StrFormat& StrFormat::operator=(const StrFormat& other) {
    if (this == &other || *this == static_cast<const char*>(other)) return *this;
    m_template = other.m_template;
    m_hasEscapes = other.m_hasEscapes;
    m_places = other.m_places;
    m_rendered.Empty();
    m_templateRead = false;
    return *this;
}

bool StrFormat::operator==(const char* text) const {
    return strcmp(*this, text == nullptr ? "" : text) == 0;
}

StrFormat::operator const char*() const {
    if (!m_rendered.IsEmpty()) return m_rendered;
    if (!m_hasEscapes) {
        m_templateRead = true;
        return m_template;
    }
    m_rendered = m_template;
    m_rendered.Replace("%%", "%");
    return m_rendered;
}

StrFormat& StrFormat::ReplaceArgEscapes(const CString& value) {
    return EscapeAndFill(viewOf(value));
}

StrFormat& StrFormat::EscapeAndFill(std::string_view value) {
    if (value.find('%') == value.npos) return Fill(value);
    CString escaped(value.data(), textLength(value.length()));
    escaped.Replace("%", "%%");
    const bool isShown = m_appendIfNoPlaceholder || FindArgEscapes().count != 0;
    Fill(viewOf(escaped));
    m_hasEscapes = m_hasEscapes || isShown;
    return *this;
}

StrFormat& StrFormat::Fill(std::string_view value) {
    const Placeholder next = FindArgEscapes();
    if (next.count != 0) {
        if (m_templateRead || !m_rendered.IsEmpty()) {
            // Held until the end: the value may stand in what was read.
            const CString rendered(std::move(m_rendered));
            const CString read(m_template);
            m_templateRead = false;
            FillPlaces(next, value);
        } else {
            FillPlaces(next, value);
        }
    } else if (m_appendIfNoPlaceholder) {
        KeepTextRead();
        const std::size_t length = static_cast<std::size_t>(m_template.GetLength());
        const std::size_t newLength = length + 2 + value.length();
        char* const end = MakeRoom(newLength) + length;
        end[0] = ',';
        end[1] = ' ';
        memcpy(end + 2, value.data(), value.length());
        m_template.ReleaseBuffer(static_cast<int>(newLength));
    }
    return *this;
}

void StrFormat::FillPlaces(const Placeholder& next, std::string_view value) {
    if (next.count == 1) {
        ReplaceOnly(next.digit, value);
    } else {
        ReplaceAll(next.digit, value);
    }
}

StrFormat::Placeholder StrFormat::FindArgEscapes() const {
    for (std::size_t digit = 0; digit < m_places.size(); ++digit) {
        const int count = m_places[digit].count;
        if (count != 0) return {static_cast<int>(digit), count};
    }
    return {INT_MAX, 0};
}

void StrFormat::ReplacePositionalArgs(int digit, const CString& value) {
    KeepTextRead();
    ReplaceAll(digit, viewOf(value));
}

// The template is about to change, but a text that has been read stays as it was read.
void StrFormat::KeepTextRead() {
    if (m_templateRead && m_rendered.IsEmpty()) m_rendered = m_template;
    m_templateRead = false;
}

void StrFormat::FindPlaces() {
    m_hasEscapes = false;
    m_places = {};
    forEachPercent(
        viewOf(m_template), [this](std::size_t) { m_hasEscapes = true; },
        [this](std::size_t at, int digit) {
            Places& places = m_places[static_cast<std::size_t>(digit)];
            if (places.count++ == 0) places.first = static_cast<int>(at);
        });
}

// Makes the template's room at least `length`, and larger when it has to move.
char* StrFormat::MakeRoom(std::size_t length) {
    const int needed = textLength(length);
    if (needed <= m_template.GetAllocLength()) return m_template.GetBuffer(needed);
    const std::size_t room = std::min<std::size_t>(length + length / 2 + kSpareRoom, INT_MAX);
    return m_template.GetBuffer(static_cast<int>(room));
}

// Fills the one place of `digit`, the lowest number that is left.
void StrFormat::ReplaceOnly(int digit, std::string_view value) {
    const Places filled = m_places[static_cast<std::size_t>(digit)];
    const std::size_t at = static_cast<std::size_t>(filled.first);
    const std::size_t length = static_cast<std::size_t>(m_template.GetLength());
    const std::size_t newLength = length - 2 + value.length();
    char* const place = MakeRoom(newLength) + at;
    memmove(place + value.length(), place + 2, length - at - 2);
    memcpy(place, value.data(), value.length());
    m_template.ReleaseBuffer(static_cast<int>(newLength));

    m_places[static_cast<std::size_t>(digit)] = {};
    const int shift = static_cast<int>(value.length()) - 2;
    for (Places& places : std::span(m_places).subspan(static_cast<std::size_t>(digit) + 1)) {
        if (places.first > filled.first) places.first += shift;
    }
}

void StrFormat::ReplaceAll(int digit, std::string_view value) {
    if (digit < 0 || digit > 9) return;
    const std::string_view old = viewOf(m_template);
    const std::size_t count =
        static_cast<std::size_t>(m_places[static_cast<std::size_t>(digit)].count);
    const std::size_t newLength = old.length() - 2 * count + value.length() * count;

    CString filled;
    char* to = filled.GetBuffer(textLength(newLength));
    std::size_t copied = 0;
    const auto copyUpTo = [&](std::size_t at) {
        memcpy(to, old.data() + copied, at - copied);
        to += at - copied;
    };
    const auto ignore = [](std::size_t) {};
    forEachPercent(old, ignore, [&](std::size_t at, int found) {
        if (found != digit) return;
        copyUpTo(at);
        memcpy(to, value.data(), value.length());
        to += value.length();
        copied = at + 2;
    });
    copyUpTo(old.length());
    filled.ReleaseBuffer(static_cast<int>(newLength));
    m_template = filled;
    FindPlaces();
}
