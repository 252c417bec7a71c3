#include "plugin_test.h"

UninitializedPluginTest::UninitializedPluginTest() : module(openPluginUnderTest()) {
    m_logAtLoad = module->errorLog();
    module->errorLog() = &log;
}

UninitializedPluginTest::~UninitializedPluginTest() {
    browser.dropObjects();
    EXPECT_EQ(browser.liveMemory(), 0U) << "memory of the browser's was not given back";
    EXPECT_EQ(browser.foreignFrees(), 0) << "memory was given back that is not the browser's";
    EXPECT_EQ(browser.count("unused entry"), 0);
    module->errorLog() = m_logAtLoad;
}

void UninitializedPluginTest::start() {
    ASSERT_EQ(module->initialize(&browser.table), 0);
    ASSERT_EQ(module->getEntryPoints(&plugin), 0);
}

PluginTest::PluginTest() {
    start();
    log.clear();
    browser.calls.clear();
}

int notifyType(const BrowserRequest& request) {
    return request.notifyData != nullptr ? *static_cast<const int*>(request.notifyData) : 0;
}

std::vector<std::string> summary(const std::vector<BrowserRequest>& requests) {
    std::vector<std::string> lines;
    for (const BrowserRequest& request : requests) {
        const std::string tag = request.wantsNotice ? std::to_string(notifyType(request)) : "-";
        lines.push_back(tag + " " + request.url);
    }
    return lines;
}
