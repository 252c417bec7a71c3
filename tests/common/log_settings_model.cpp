#include "log_settings_model.h"

#include <algorithm>
#include <climits>
#include <optional>
#include <vector>

namespace {

struct Piece {
    std::size_t start;
    std::string text;  // up to its first NUL
};

std::vector<Piece> piecesOf(const std::string& bytes) {
    std::vector<Piece> pieces;
    for (std::size_t start = 0; start < bytes.size();) {
        std::size_t end = start;
        while (end < bytes.size() && end - start < 255) {
            if (bytes[end++] == '\n') break;
        }
        pieces.push_back({start, bytes.substr(start, end - start).c_str()});
        start = end;
    }
    return pieces;
}

// Digits with white space and a sign in front; the nearest int when that is too small for them.
std::optional<int> numberAt(const std::string& text, std::size_t at) {
    while (at < text.size() && std::string(" \t\r\n\v\f").find(text[at]) != std::string::npos) ++at;
    int sign = 1;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) sign = text[at++] == '-' ? -1 : 1;
    std::optional<double> number;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        number = number.value_or(0) * 10 + (text[at] - '0');
    }
    if (!number) return std::nullopt;
    return static_cast<int>(std::clamp<double>(sign * *number, INT_MIN, INT_MAX));
}

const std::string kDefault = "default_log_level=";

}  // namespace

unsigned int SettingsModel::level() const {
    for (const Piece& piece : piecesOf(bytes)) {
        if (piece.text.starts_with(kDefault)) {
            return static_cast<unsigned int>(numberAt(piece.text, kDefault.size()).value_or(63));
        }
    }
    return 63;
}

unsigned int SettingsModel::moduleLevel(const std::string& module) const {
    const std::string key = module + "_log_level=";
    int defaultLevel = 63;
    int moduleLevel = -1;
    for (const Piece& piece : piecesOf(bytes)) {
        if (piece.text.starts_with(kDefault)) {
            defaultLevel = numberAt(piece.text, kDefault.size()).value_or(63);
        }
        if (piece.text.starts_with(key)) {
            moduleLevel = numberAt(piece.text, key.size()).value_or(-1);
        }
    }
    return static_cast<unsigned int>(moduleLevel != -1 ? moduleLevel : defaultLevel);
}

unsigned int SettingsModel::rotationSize() const {
    for (const Piece& piece : piecesOf(bytes)) {
        if (piece.text.starts_with("log_file_size")) {
            return static_cast<unsigned int>(numberAt(piece.text, 14).value_or(5242880));
        }
    }
    return 5242880;
}

void SettingsModel::setLevel(int level) {
    const std::string line = kDefault + std::to_string(level) + "\n";
    for (const Piece& piece : piecesOf(bytes)) {
        if (!piece.text.starts_with(kDefault)) continue;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (piece.start + i == bytes.size()) bytes += ' ';
            bytes[piece.start + i] = line[i];
        }
        return;
    }
    bytes += "\n" + line;
}
