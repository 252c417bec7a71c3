#include "UrlText.h"

#include <array>
#include <cctype>
#include <cstring>

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
    const char* const from = text;
    const auto length = static_cast<std::size_t>(text.GetLength());
    const auto isPlain = [from](std::size_t i) {
        return std::isalnum(static_cast<unsigned char>(from[i])) != 0;
    };
    std::size_t plain = 0;
    for (std::size_t i = 0; i < length; ++i) plain += isPlain(i);

    // Every byte is written as an escape and then counted as long as it is to be: branches on what
    // a text holds cannot be foreseen. The last plain bytes may so write two bytes too far.
    const int encoded = textLength(length * 3 - plain * 2);
    CString result;
    char* to = result.GetBuffer(textLength(static_cast<std::size_t>(encoded) + 2));
    for (std::size_t i = 0; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(from[i]);
        to[0] = isPlain(i) ? from[i] : '%';
        to[1] = kDigits[byte / 16];
        to[2] = kDigits[byte % 16];
        to += isPlain(i) ? 1 : 3;
    }
    result.ReleaseBuffer(encoded);
    return result;
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
