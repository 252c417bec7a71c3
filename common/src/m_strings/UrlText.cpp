#include "UrlText.h"

#include <array>
#include <cctype>
#include <cstring>
#include <memory>
#include <string_view>

#include "HexText.h"
#include "ScanNumber.h"
#include "TextLength.h"
#include "TextTools.h"

namespace {

// Writes `length` bytes of decoded text, which are at most as many as `text` has.
std::size_t decode(const char* text, std::size_t length, char* to) {
    const char* const start = to;
    const char* const end = text + length;
    while (end - text >= 3) {
        unsigned char high = 0;
        unsigned char low = 0;
        if (*text == '%' && HexCharToNum(text[1], high) && HexCharToNum(text[2], low)) {
            *to++ = static_cast<char>(high << 4 | low);
            text += 3;
        } else {
            *to++ = *text++;
        }
    }
    const auto rest = static_cast<std::size_t>(end - text);
    std::memcpy(to, text, rest);
    return static_cast<std::size_t>(to - start) + rest;
}

// The bytes that the current locale calls letters and digits, each asked for once.
class PlainBytes {
  public:
    bool contain(unsigned char byte) {
        signed char& known = m_known[byte];
        if (known == 0) known = std::isalnum(byte) != 0 ? 1 : -1;
        return known > 0;
    }

  private:
    std::array<signed char, 256> m_known{};
};

struct KnownScheme {
    const char* prefix;
    unsigned int scheme;
    unsigned int port;
};
constexpr std::array<KnownScheme, 4> kKnownSchemes{{{"http://", kSchemeHttp, 80},
                                                    {"https://", kSchemeHttps, 443},
                                                    {"ftp://", kSchemeFtp, 21},
                                                    {"file://", kSchemeFile, 0}}};

// The scheme that `url` begins with; a null prefix when it is not known.
KnownScheme knownScheme(const CString& url) {
    CString beginning = url.Left(8);
    beginning.MakeLower();
    for (const KnownScheme& known : kKnownSchemes) {
        if (beginning.Find(known.prefix) == 0) return known;
    }
    return {nullptr, kSchemeOther, 0};
}

// Moves what stands at or behind the first `separator` after the first character to `path`.
void cutPath(CString& host, CString& path, char separator) {
    const int at = host.Find(separator, 1);
    if (at < 0) return;
    path = host.Mid(at);
    host = host.Left(at);
}

// Cuts the port's text, if any, off the host.
CString cutPort(CString& host) {
    CString port;
    const int bracket = host.ReverseFind(']');
    if (bracket < 0) {
        SplitString(host, host, port, ':', false, true);
    } else if (host.GetAt(bracket + 1) == ':') {
        port = host.Mid(bracket + 2);
        host = host.Left(bracket + 1);
    }
    return port;
}

void cutUserInformation(CString& host) {
    CString user;
    CString rest;
    if (SplitString(host, user, rest, '@', false, true) >= 0) host = rest;
}

}  // namespace

CString URLEncode(const CString& text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto length = static_cast<std::size_t>(text.GetLength());
    // Every byte is written as an escape and then counted as long as it is to be: branches on what
    // a text holds cannot be foreseen.
    const auto scratch = std::make_unique_for_overwrite<char[]>(length * 3);
    PlainBytes plain;
    char* to = scratch.get();
    for (const char c : std::string_view(text, length)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = plain.contain(byte);
        to[0] = isPlain ? c : '%';
        to[1] = kDigits[byte / 16];
        to[2] = kDigits[byte % 16];
        to += isPlain ? 1 : 3;
    }
    return CString(scratch.get(), textLength(static_cast<std::size_t>(to - scratch.get())));
}

CString URLDecode(const CString& text) {
    CString result;
    char* const to = result.GetBuffer(text.GetLength());
    result.ReleaseBuffer(
        static_cast<int>(decode(text, static_cast<std::size_t>(text.GetLength()), to)));
    return result;
}

std::string URLDecode_s(const std::string& text) {
    std::string result(text.size(), '\0');
    result.resize(decode(text.data(), text.size(), result.data()));
    return result;
}

bool ParseURL_BASIC(const char* url, unsigned int& scheme, CString& host, CString& path,
                    unsigned int& port, bool allowOtherSchemes) {
    CString text(url);
    text.TrimLeft();
    text.TrimRight();
    const KnownScheme known = knownScheme(text);
    const int prefixEnd = known.prefix != nullptr ? static_cast<int>(std::strlen(known.prefix))
                                                  : text.Find("://") + 3;
    if (known.prefix == nullptr && (!allowOtherSchemes || prefixEnd < 4)) return false;

    scheme = known.scheme;
    port = known.port;
    host = text.Mid(prefixEnd);
    if (scheme == kSchemeFile) {
        host.Replace('/', '\\');
        path = "";
        cutPath(host, path, '\\');
        return true;
    }
    path = "/";
    cutPath(host, path, '/');
    cutUserInformation(host);
    const CString portText = cutPort(host);
    if (!portText.IsEmpty()) port = static_cast<unsigned int>(SScanInt(portText).value_or(0));
    return true;
}
