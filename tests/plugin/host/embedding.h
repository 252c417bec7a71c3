#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "plugin_instance.h"
#include "scripted_browser.h"

/// How a browser delivers one answer.
struct Delivery {
    NPReason streamReason = NPRES_DONE;
    NPReason noticeReason = NPRES_DONE;
    bool withStream = true;  ///< false: nothing but the notice, as when the port is closed
    int32 chunk = 0;         ///< the most bytes of one block; 0: what NPP_WriteReady says
};

/// One embedding of the plug-in in a page, as a browser holds it: makes it, delivers answers to
/// it, and takes it away.
class Embedding {
  public:
    /// Names and values; a null name or value is passed on as null.
    using Parameters = std::vector<std::pair<const char*, const char*>>;

    explicit Embedding(const NPPluginFuncs& plugin) : m_plugin(plugin) {}
    Embedding(const Embedding&) = delete;
    Embedding& operator=(const Embedding&) = delete;
    ~Embedding();

    NPError create(const Parameters& parameters = {});
    NPError destroy();

    /// Delivers `answer` to `request`: NewStream, Write until all is taken, DestroyStream, and at
    /// last URLNotify, as far as the browser's ways (`how`) have them.
    void deliver(const BrowserRequest& request, std::string_view answer, const Delivery& how = {});

    /// The first half of `deliver`: everything but the notice.
    void deliverStream(const BrowserRequest& request, std::string_view answer,
                       const Delivery& how = {});
    void notify(const BrowserRequest& request, NPReason reason);

    NPP handle() { return &m_handle; }
    nsPluginInstance& record() { return *static_cast<nsPluginInstance*>(m_handle.pdata); }
    bool isAlive() const { return m_handle.pdata != nullptr; }

    std::string data() { return static_cast<const char*>(*record().data); }
    std::string urlBuffer() { return static_cast<const char*>(*record().urlBuffer); }

  private:
    const NPPluginFuncs& m_plugin;
    NPP_t m_handle{};
};
