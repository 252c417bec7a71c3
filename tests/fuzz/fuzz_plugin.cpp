#include "fuzz_plugin.h"

#include <gtest/gtest.h>

#include "IUErrorLog.h"
#include "fuzz_home.h"
#include "np_entry.h"

FuzzPlugin::FuzzPlugin() {
    fuzzHome();
    machine() = {};
    errorLog = &log;
    EXPECT_EQ(NP_Initialize(&browser.table), 0);
    EXPECT_EQ(NP_GetEntryPoints(&plugin), 0);
    log.clear();
}

FuzzPlugin::~FuzzPlugin() {
    browser.dropObjects();
    EXPECT_EQ(browser.liveMemory(), 0U);
    EXPECT_EQ(browser.foreignFrees(), 0);
    EXPECT_EQ(browser.count("unused entry"), 0);
    errorLog = nullptr;
}

std::string FuzzPlugin::lastUrl() const {
    return browser.requests.empty() ? "" : browser.lastRequest().url;
}

std::string bodyOf(std::string_view text) {
    // Looked for one character after the other.
    for (std::size_t at = 0; at + 4 <= text.size(); ++at) {
        if (text[at] == '\r' && text[at + 1] == '\n' && text[at + 2] == '\r' &&
            text[at + 3] == '\n') {
            return std::string(text.substr(at + 4));
        }
    }
    return "";
}
