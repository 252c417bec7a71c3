#include "PlainFormat.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <functional>
#include <string_view>

namespace {

constexpr std::size_t kNumberRoom = 32;
constexpr std::size_t kCharacterRoom = 2;
constexpr std::string_view kNullText = "(null)";

char* writeNumber(char* out, unsigned int number, char kind) {
    char* const end = out + kNumberRoom;
    switch (kind) {
        case 'd':
            return std::to_chars(out, end, static_cast<int>(number)).ptr;
        case 'x':
            return std::to_chars(out, end, number, 16).ptr;
        default:
            return std::to_chars(out, end, number).ptr;
    }
}

}  // namespace

void PlainFormat::AddText(const char* text, std::size_t length) {
    m_pieces[m_count++] = {text, length, 0, 's'};
}

bool PlainFormat::Add(char kind, va_list& args) {
    switch (kind) {
        case 's': {
            const char* const text = va_arg(args, const char*);
            const std::string_view shown = text == nullptr ? kNullText : std::string_view(text);
            AddText(shown.data(), shown.length());
            m_estimate += std::max(shown.length(), std::size_t{1});
            return true;
        }
        case 'd':
        case 'u':
        case 'x':
        case 'c':
            m_pieces[m_count++] = {nullptr, 0, va_arg(args, unsigned int), kind};
            m_estimate += kind == 'c' ? kCharacterRoom : kNumberRoom;
            return true;
        default:
            return false;
    }
}

bool PlainFormat::Read(const char* format, va_list args) {
    va_list rest;
    va_copy(rest, args);
    bool plain = true;
    const char* run = format;
    for (const char* at = format; plain; ++at) {
        if (*at != '%' && *at != '\0') continue;
        // "%%" leaves its first '%' to the run before it.
        const bool doubled = *at == '%' && at[1] == '%';
        const std::size_t length = static_cast<std::size_t>(at - run) + (doubled ? 1 : 0);
        plain = m_count + 2 <= m_pieces.size();
        if (plain && length != 0) AddText(run, length);
        m_estimate += length;
        if (*at == '\0') break;
        ++at;
        run = at + 1;
        if (plain && !doubled) plain = Add(*at, rest);
    }
    va_end(rest);
    return plain;
}

bool PlainFormat::TookOwnText(const char* own, std::size_t size) const {
    return std::any_of(m_pieces.begin(), m_pieces.begin() + m_count, [&](const Piece& piece) {
        return !std::less<>()(piece.text, own) && std::less<>()(piece.text, own + size);
    });
}

char* PlainFormat::Write(char* out) const {
    for (std::size_t i = 0; i < m_count; ++i) {
        const Piece& piece = m_pieces[i];
        if (piece.kind == 's') {
            if (piece.length != 0) memcpy(out, piece.text, piece.length);
            out += piece.length;
        } else if (piece.kind != 'c') {
            out = writeNumber(out, piece.number, piece.kind);
        } else if (const char ch = static_cast<char>(piece.number); ch != '\0') {
            *out++ = ch;
        } else {
            break;
        }
    }
    return out;
}
