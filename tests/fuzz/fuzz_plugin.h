#pragma once

#include <string>
#include <string_view>

#include "capturing_log.h"
#include "embedding.h"
#include "fake_machine.h"
#include "scripted_browser.h"

/// The plug-in in a scripted browser on a fake machine, freshly initialised, and its log. At the
/// end the browser's account must be even.
class FuzzPlugin {
  public:
    FuzzPlugin();
    ~FuzzPlugin();
    FuzzPlugin(const FuzzPlugin&) = delete;
    FuzzPlugin& operator=(const FuzzPlugin&) = delete;

    /// The URL of the last request that the plug-in made; "" when it has made none.
    std::string lastUrl() const;

    ScriptedBrowser browser;
    CapturingLog log;
    NPPluginFuncs plugin{};
};

/// How the requests to the page and to the service begin, and end.
inline constexpr char kToPage[] = "javascript:c_addcomm('";
inline constexpr char kToPageEnd[] = "')";
inline constexpr char kToService[] = "http://127.0.0.1:44444/vpn.php?";

/// What stands behind the first blank line of `text`; nothing at all without one.
std::string bodyOf(std::string_view text);
