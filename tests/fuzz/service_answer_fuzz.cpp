// A service's answer of any bytes, in blocks of any length: the page gets what stands behind the
// first blank line, however the answer was cut and whichever way it came.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "direct_info.h"
#include "fuzz_input.h"
#include "fuzz_plugin.h"
#include "np_entry.h"
#include "plugin_instance.h"
#include "scriptable.h"

namespace {

// Through the browser: a blank line at the very beginning is no header, and is left in place.
void checkStreamed(const std::string& answer, FuzzInput& cuts) {
    FuzzPlugin host;
    Embedding page(host.plugin);
    ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
    const BrowserRequest request = host.browser.lastRequest();

    char type[] = "text/plain";
    NPStream stream{};
    stream.url = request.url.c_str();
    stream.notifyData = request.notifyData;
    stream.end = static_cast<uint32>(cuts.flag() ? answer.size() : cuts.below(1 << 16));
    uint16 mode = 0;
    EXPECT_EQ(host.plugin.newstream(page.handle(), type, &stream, 0, &mode), 0);
    for (std::size_t at = 0; at < answer.size();) {
        const std::size_t room = answer.size() - at;
        std::string block =
            answer.substr(at, cuts.isEmpty() ? room : std::min(1 + cuts.below(256), room));
        const auto length = static_cast<int32>(block.size());
        EXPECT_EQ(host.plugin.write(page.handle(), &stream, 0, length, block.data()), length);
        at += block.size();
    }
    EXPECT_EQ(host.plugin.destroystream(page.handle(), &stream, NPRES_DONE), 0);
    page.notify(request, NPRES_DONE);

    const std::string header = answer.c_str();
    const std::size_t blankLine = header.find("\r\n\r\n");
    const bool hasHeader = blankLine != std::string::npos && blankLine > 0;
    const std::string url = kToPage + (hasHeader ? bodyOf(answer) : answer) + kToPageEnd;
    EXPECT_EQ(host.lastUrl(), url.c_str());
    EXPECT_EQ(host.browser.requests.size(), 2U);
}

// Past the browser: one read of at most 1000 bytes.
void checkDirect(const std::string& answer) {
    FuzzPlugin host;
    Embedding page(host.plugin);
    ASSERT_EQ(page.create(), 0);
    *page.record().data = "before";
    machine().answer = answer;
    const std::string text = answer.substr(0, 1000).c_str();
    EXPECT_EQ(GetDataFromNevo(&page.record()), answer.empty() ? 0 : 1);
    EXPECT_EQ(page.data(), answer.empty() ? "before" : bodyOf(text));
    // A failed request leaves its socket open.
    EXPECT_EQ(machine().openFiles, answer.empty() ? 1 : 0);
}

// As the script property: one read of at most 511 bytes.
void checkProperty(const std::string& answer) {
    FuzzPlugin host;
    char name[] = "info";
    static char* converted = nullptr;
    host.browser.table.utf8fromidentifier = [](NPIdentifier identifier) -> NPUTF8* {
        return converted = strdup(static_cast<const char*>(identifier));
    };
    ASSERT_EQ(NP_Initialize(&host.browser.table), 0);
    machine().answer = answer;
    NPVariant result{};
    EXPECT_TRUE(sNPClass.getProperty(nullptr, name, &result));
    free(converted);  // the plug-in does not

    const std::string text = answer.substr(0, 511).c_str();
    if (text.find("\r\n\r\n") == std::string::npos) {
        ASSERT_EQ(result.type, NPVariantType_Bool);
        EXPECT_FALSE(result.value.boolValue);
    } else {
        ASSERT_EQ(result.type, NPVariantType_String);
        const NPString& body = result.value.stringValue;
        EXPECT_EQ(std::string(body.UTF8Characters), bodyOf(text));
        EXPECT_EQ(body.UTF8Length, bodyOf(text).size());
        free(const_cast<NPUTF8*>(body.UTF8Characters));
    }
    EXPECT_EQ(machine().openFiles, 0);
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string answer = input.text();
    checkDirect(answer);
    checkProperty(answer);
    checkStreamed(answer, input);
}
