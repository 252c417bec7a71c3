#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "capturing_log.h"
#include "embedding.h"
#include "plugin_module.h"
#include "scripted_browser.h"

/// Opens the plug-in that this test program is about: a loaded module, or the linked object files.
std::unique_ptr<PluginModule> openPluginUnderTest();

/// The base of all tests of the plug-in: a scripted browser, the plug-in freshly loaded, and a log
/// object of the test's own. Nothing has been called yet.
///
/// At the end of each test the browser's account must be even: no memory held, nothing released
/// that was not the browser's, no call of an entry that is none of the plug-in's business.
class UninitializedPluginTest : public testing::Test {
  protected:
    UninitializedPluginTest();
    ~UninitializedPluginTest() override;

    /// NP_Initialize and NP_GetEntryPoints as a browser calls them; both must answer 0.
    void start();

    /// Gives the plug-in the log object back that it was loaded with, which writes to a file.
    void useOwnLog() { module->errorLog() = m_logAtLoad; }

    /// Takes the plug-in's log object away, as before any has been made.
    void removeLog() { module->errorLog() = nullptr; }

    ScriptedBrowser browser;
    CapturingLog log;
    std::unique_ptr<PluginModule> module;
    NPPluginFuncs plugin{};

  private:
    IUErrorLog* m_logAtLoad;
};

/// The same after start-up, the log and the account empty.
class PluginTest : public UninitializedPluginTest {
  protected:
    PluginTest();
};

/// Notify types as the plug-in's notify records begin with them.
int notifyType(const BrowserRequest& request);

/// "geturlnotify" requests as "TYPE URL", plain ones as "- URL", in order.
std::vector<std::string> summary(const std::vector<BrowserRequest>& requests);
