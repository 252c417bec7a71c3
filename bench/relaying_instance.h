#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "notify_data.h"
#include "npn_gate.h"
#include "npp_gate.h"
#include "plugin_instance.h"

/// One embedding that relays, in a browser that takes every URL and never loads one.
class RelayingInstance {
  public:
    RelayingInstance() {
        NPNFuncs.version = 26;
        NPNFuncs.geturlnotify = takeUrl;
        NPP_New(nullptr, &m_npp, 1, 0, nullptr, nullptr, nullptr);
        record().doNotTerminate = 0;
    }

    ~RelayingInstance() {
        record().doNotTerminate = 1;  // no service was started, so none is stopped
        NPP_Destroy(&m_npp, nullptr);
    }

    RelayingInstance(const RelayingInstance&) = delete;
    RelayingInstance& operator=(const RelayingInstance&) = delete;

    /// The browser delivers an answer of `size` bytes in blocks, all from its one buffer.
    void deliver(streamData* notify, const char* url, const std::string& block, size_t size,
                 bool announced) {
        NPStream stream = {};
        stream.url = url;
        stream.end = announced ? static_cast<uint32>(size) : 0;
        stream.notifyData = notify;
        char mime[] = "text/plain";
        uint16 mode = 0;
        NPP_NewStream(&m_npp, mime, &stream, 0, &mode);
        for (size_t at = 0; at < size; at += block.size()) {
            const size_t length = std::min(block.size(), size - at);
            NPP_WriteReady(&m_npp, &stream);
            NPP_Write(&m_npp, &stream, static_cast<int32>(at), static_cast<int32>(length),
                      const_cast<char*>(block.data()));
        }
        NPP_DestroyStream(&m_npp, &stream, NPRES_DONE);
    }

    void complete(streamData* notify, const char* url) {
        NPP_URLNotify(&m_npp, url, NPRES_DONE, notify);
    }

  private:
    static NPError takeUrl(NPP /*instance*/, const char* url, const char* /*target*/,
                           void* /*notifyData*/) {
        benchmark::DoNotOptimize(url);
        return NPERR_NO_ERROR;
    }

    nsPluginInstance& record() { return *static_cast<nsPluginInstance*>(m_npp.pdata); }

    NPP_t m_npp = {};
};

/// Rounds of one conversation, each from a complete answer of the service to the next URL, in both
/// directions: what the service and the page hear.
class RelayedRounds {
  public:
    /// The service's answers are `answerSize` bytes long, and come in the blocks of a browser.
    explicit RelayedRounds(size_t answerSize)
        : m_answer(answerSize, 'a'),
          m_block(std::min<size_t>(answerSize, 8128), 'a'),
          m_pageUrl("javascript:c_addcomm('" + m_answer + "')") {}

    void goRound() {
        m_instance.deliver(g_nevo_http, kServiceUrl, m_block, m_answer.size(), true);
        m_instance.complete(g_nevo_http, kServiceUrl);
        m_instance.deliver(g_s_js, m_pageUrl.c_str(), m_result, m_result.size(), true);
        m_instance.complete(g_s_js, m_pageUrl.c_str());
    }

  private:
    static constexpr char kServiceUrl[] = "http://127.0.0.1:44444/vpn.php?INFO";

    std::string m_answer;
    std::string m_block;
    std::string m_pageUrl;
    std::string m_result = "the page's answer, 32 bytes long";
    RelayingInstance m_instance;
};
