#include "PlainFormat.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <functional>

namespace {

constexpr std::size_t kNumberRoom = 32;
constexpr std::size_t kCharacterRoom = 2;
constexpr std::string_view kNullText = "(null)";

}  // namespace

void PlainFormat::AddPiece(std::string_view piece) {
    if (!m_ended) m_pieces[m_count++] = piece;
}

void PlainFormat::AddNumber(char kind, unsigned int number) {
    char* const begin = m_digits.data() + m_count * kMostDigits;
    char* end = begin + kMostDigits;
    switch (kind) {
        case 'd':
            end = std::to_chars(begin, end, static_cast<int>(number)).ptr;
            break;
        case 'x':
            end = std::to_chars(begin, end, number, 16).ptr;
            break;
        default:
            end = std::to_chars(begin, end, number).ptr;
    }
    AddPiece({begin, end});
}

bool PlainFormat::Add(char kind, va_list& args) {
    switch (kind) {
        case 's': {
            const char* const text = va_arg(args, const char*);
            const std::string_view shown = text == nullptr ? kNullText : std::string_view(text);
            AddPiece(shown);
            m_estimate += std::max(shown.length(), std::size_t{1});
            return true;
        }
        case 'd':
        case 'u':
        case 'x':
            AddNumber(kind, va_arg(args, unsigned int));
            m_estimate += kNumberRoom;
            return true;
        case 'c': {
            char& character = m_digits[m_count * kMostDigits];
            character = static_cast<char>(va_arg(args, int));
            m_ended = m_ended || character == '\0';
            AddPiece({&character, 1});
            m_estimate += kCharacterRoom;
            return true;
        }
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
        if (plain && length != 0) AddPiece({run, length});
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
    return std::ranges::any_of(Pieces(), [&](std::string_view piece) {
        return !std::less<>()(piece.data(), own) && std::less<>()(piece.data(), own + size);
    });
}

char* PlainFormat::Write(char* out) const {
    for (const std::string_view piece : Pieces()) {
        memcpy(out, piece.data(), piece.length());
        out += piece.length();
    }
    return out;
}
