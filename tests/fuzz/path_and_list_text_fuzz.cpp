// URLs, paths and lists as text: the parts put together again are the whole, a URL made of parts
// falls into them, and a port is read as a number that fits.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "PathText.h"
#include "ScanNumber.h"
#include "TextTools.h"
#include "UrlText.h"
#include "fuzz_input.h"
#include "text_of.h"

namespace {

constexpr char kSpace[] = " \t\n\v\f\r";

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kSpace) + 1 - first);
}

std::string without(const std::string& text, const std::string& characters) {
    std::string rest;
    for (const char c : text) {
        if (characters.find(c) == std::string::npos) rest += c;
    }
    return rest;
}

struct Url {
    unsigned int scheme = 77;
    CString host = "host";
    CString path = "path";
    unsigned int port = 77;

    bool parse(const std::string& text, bool others) {
        return ParseURL_BASIC(text.c_str(), scheme, host, path, port, others);
    }
};

// Any text: nothing is stored when it is refused, and a path begins with its separator.
void checkAnyUrl(const std::string& text) {
    Url url;
    if (!url.parse(text, false)) {
        EXPECT_EQ(url.scheme, 77U);
        EXPECT_EQ(textOf(url.host) + textOf(url.path), "hostpath");
        EXPECT_EQ(url.port, 77U);
        Url other;
        if (other.parse(text, true)) {
            EXPECT_EQ(other.scheme, kSchemeOther);
            EXPECT_EQ(textOf(other.path).substr(0, 1), "/");
        }
        return;
    }
    if (url.scheme == kSchemeFile) {
        EXPECT_EQ(textOf(url.host + url.path).find('/'), std::string::npos);
        EXPECT_EQ(url.port, 0U);
        return;
    }
    EXPECT_EQ(textOf(url.path).substr(0, 1), "/");
    EXPECT_EQ(textOf(url.host).find('/', 1), std::string::npos);
}

// A URL made of parts, none of which holds what separates them.
void checkMadeUrl(FuzzInput& input) {
    static const char* const schemes[] = {"http://", "HTTPS://", "fTp://", "gopher://"};
    static const unsigned int ports[] = {80, 443, 21, 0};
    const std::size_t scheme = input.below(4);
    const std::string separators = std::string("/:@[]") + kSpace;
    const std::string host = "h" + without(input.line(), separators);
    const std::string path = trimmed("/" + input.line());
    const std::string user = input.flag() ? without(input.line(), "/") + "@" : "";
    const bool stated = input.flag();
    const std::string port = without(input.line(), separators);

    Url url;
    ASSERT_TRUE(url.parse(schemes[scheme] + user + host + (stated ? ":" + port : "") + path, true));
    EXPECT_EQ(url.scheme, scheme < 3 ? scheme + 1 : kSchemeOther);
    EXPECT_EQ(textOf(url.host), host);
    EXPECT_EQ(textOf(url.path), path);
    const auto number = static_cast<unsigned int>(SScanInt(port.c_str()).value_or(0));
    EXPECT_EQ(url.port, stated && !port.empty() ? number : ports[scheme]);
}

void checkPath(const std::string& path) {
    CString dir;
    CString name;
    ASSERT_TRUE(ParseFullPath(path.c_str(), dir, name));
    const std::size_t last = path.find_last_of("/\\");
    if (last == std::string::npos || textOf(dir) == path) {
        EXPECT_EQ(textOf(dir + name), path);
    } else {
        EXPECT_EQ(textOf(dir), path.substr(0, last) + "/");
        EXPECT_EQ(textOf(name), path.substr(last + 1));
    }
    EXPECT_EQ(SGetFileName(path.c_str(), nullptr), name);
    EXPECT_EQ(SGetFilePath(path.c_str(), nullptr), dir);

    const CString stripped = stripTrailingSlash(path.c_str());
    const bool slash = !path.empty() && last == path.size() - 1;
    EXPECT_EQ(hasTralingSlash(path.c_str()), slash);
    EXPECT_EQ(textOf(stripped), slash ? path.substr(0, last) : path);
    EXPECT_EQ(textOf(addTrailingSlash(path.c_str())), slash ? path : path + "/");
}

void checkSplit(const std::string& text, char separator) {
    for (const bool fromRight : {false, true}) {
        CString left;
        CString right;
        const int at = SplitString(text.c_str(), left, right, separator, true, fromRight);
        const std::size_t found = fromRight ? text.rfind(separator) : text.find(separator);
        ASSERT_EQ(at, found == std::string::npos ? -1 : static_cast<int>(found));
        EXPECT_EQ(textOf(left) + (at < 0 ? "" : separator + textOf(right)), text);

        SplitString(text.c_str(), left, right, separator, false, fromRight);
        const std::string tail = at < 0 ? "" : text.substr(found + 1);
        EXPECT_EQ(textOf(left), trimmed(text.substr(0, found)));
        EXPECT_EQ(textOf(right), trimmed(tail));
    }
}

void checkNameValue(const std::string& text) {
    CString name = "n";
    CString value = "v";
    const std::size_t at = text.find('=');
    const bool isPair = at != std::string::npos && at > 0;
    ASSERT_EQ(ParseNameValue(text.c_str(), name, value), isPair);
    EXPECT_EQ(textOf(name), isPair ? trimmed(text.substr(0, at)) : "n");
    EXPECT_EQ(textOf(value), isPair ? trimmed(text.substr(at + 1)) : "v");
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string text = input.line();
    // A text has no NUL in it that could be split at.
    const char separator = static_cast<char>(1 + input.below(127));
    checkAnyUrl(text);
    checkPath(text);
    checkSplit(text, separator);
    checkNameValue(text);
    checkMadeUrl(input);
}
