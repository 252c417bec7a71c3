#include "StrFormat.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

#include "TextLength.h"

namespace {

// Room kept behind a template, so that filling it seldom moves it.
constexpr std::size_t kSpareRoom = 64;

// Calls `onPlaceholder(index, digit)` for each placeholder of `text`.
template <typename OnPlaceholder>
void forEachPlaceholder(std::string_view text, OnPlaceholder onPlaceholder) {
    const char* const begin = text.data();
    const char* const end = begin + text.length();
    for (const char* at = begin; at < end;) {
        at = static_cast<const char*>(memchr(at, '%', static_cast<std::size_t>(end - at)));
        if (at == nullptr || ++at == end) return;
        if (*at == '%') {
            ++at;
        } else if (*at >= '0' && *at <= '9') {
            onPlaceholder(static_cast<std::size_t>(at - 1 - begin), *at - '0');
        }
    }
}

}  // namespace

StrFormat::StrFormat(const char* text) {
    if (text == nullptr) return;
    const std::size_t length = strlen(text);
    memcpy(Resize(length), text, length);
}

StrFormat::StrFormat(const wchar_t* text) : m_template(createString(text)) {}

StrFormat::StrFormat(const CString& text) : m_template(text) {}

StrFormat& StrFormat::operator=(const StrFormat& other) {
    if (this == &other || *this == static_cast<const char*>(other)) return *this;
    m_template = other.m_template;
    m_rendered.Empty();
    return *this;
}

bool StrFormat::operator==(const char* text) const {
    return strcmp(*this, text == nullptr ? "" : text) == 0;
}

StrFormat::operator const char*() const {
    if (m_rendered.IsEmpty()) {
        m_rendered = m_template;
        m_rendered.Replace("%%", "%");
    }
    return m_rendered;
}

StrFormat& StrFormat::ReplaceArgEscapes(const CString& value) { return Fill(viewOf(value)); }

StrFormat& StrFormat::Fill(std::string_view value) {
    CString escaped;
    if (value.find('%') != std::string_view::npos) {
        escaped = CString(value.data(), textLength(value.length()));
        escaped.Replace("%", "%%");
        value = viewOf(escaped);
    }
    const Placeholder next = FindArgEscapes();
    if (next.count != 0) {
        // Emptied, but held until the end: the value may stand in it.
        const CString read(std::move(m_rendered));
        if (next.count == 1) {
            ReplaceOnly(static_cast<std::size_t>(next.first), value);
        } else {
            ReplaceAll(next.digit, value);
        }
    } else if (m_appendIfNoPlaceholder) {
        const std::size_t length = static_cast<std::size_t>(m_template.GetLength());
        char* const end = Resize(length + 2 + value.length()) + length;
        memcpy(end, ", ", 2);
        memcpy(end + 2, value.data(), value.length());
    }
    return *this;
}

StrFormat::Placeholder StrFormat::FindArgEscapes() const {
    Placeholder lowest{INT_MAX, 0, 0};
    forEachPlaceholder(viewOf(m_template), [&lowest](std::size_t at, int digit) {
        if (digit < lowest.digit) {
            lowest = {digit, 1, static_cast<int>(at)};
        } else if (digit == lowest.digit) {
            ++lowest.count;
        }
    });
    return lowest;
}

void StrFormat::ReplacePositionalArgs(int digit, const CString& value) {
    ReplaceAll(digit, viewOf(value));
}

// Gives the template a new length, and room beyond it when it has to move.
char* StrFormat::Resize(std::size_t length) {
    const int newLength = textLength(length);
    if (newLength > m_template.GetAllocLength()) {
        m_template.GetBuffer(
            textLength(std::min<std::size_t>(length + length / 2 + kSpareRoom, INT_MAX)));
    }
    return m_template.GetBufferSetLength(newLength);
}

void StrFormat::ReplaceOnly(std::size_t at, std::string_view value) {
    const std::size_t length = static_cast<std::size_t>(m_template.GetLength());
    const std::size_t newLength = length - 2 + value.length();
    char* const text = Resize(newLength > length ? newLength : length);
    memmove(text + at + value.length(), text + at + 2, length - at - 2);
    memcpy(text + at, value.data(), value.length());
    Resize(newLength);
}

void StrFormat::ReplaceAll(int digit, std::string_view value) {
    const std::string_view old = viewOf(m_template);
    std::size_t count = 0;
    forEachPlaceholder(old, [&](std::size_t, int found) { count += found == digit ? 1 : 0; });

    StrFormat filled("");
    char* to = filled.Resize(old.length() - 2 * count + value.length() * count);
    std::size_t copied = 0;
    const auto copyUpTo = [&](std::size_t at) {
        memcpy(to, old.data() + copied, at - copied);
        to += at - copied;
    };
    forEachPlaceholder(old, [&](std::size_t at, int found) {
        if (found != digit) return;
        copyUpTo(at);
        memcpy(to, value.data(), value.length());
        to += value.length();
        copied = at + 2;
    });
    copyUpTo(old.length());
    m_template = filled.m_template;
}
