// The plug-in's own share of a connection, against a browser that does nothing and with no log
// object. The peer is one memcpy of the same answer, run beside it.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "IUErrorLog.h"
#include "notify_data.h"
#include "npn_gate.h"
#include "npp_gate.h"
#include "plugin_instance.h"
#include "work_counters.h"

namespace {

constexpr int64_t kMegabyte = 1 << 20;

NPError takeUrl(NPP /*instance*/, const char* url, const char* /*target*/, void* /*notifyData*/) {
    benchmark::DoNotOptimize(url);
    return NPERR_NO_ERROR;
}

// One embedding that relays, in a browser that takes every URL and never loads one.
class RelayingInstance {
  public:
    RelayingInstance() {
        errorLog = nullptr;
        NPNFuncs.version = 26;
        NPNFuncs.geturlnotify = takeUrl;
        NPP_New(nullptr, &m_npp, 1, 0, nullptr, nullptr, nullptr);
        record().doNotTerminate = 0;
    }

    ~RelayingInstance() {
        record().doNotTerminate = 1;  // no service was started, so none is stopped
        NPP_Destroy(&m_npp, nullptr);
    }

    // The browser delivers an answer of `size` bytes in blocks, all from its one buffer.
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

    nsPluginInstance& record() { return *static_cast<nsPluginInstance*>(m_npp.pdata); }

  private:
    NPP_t m_npp = {};
};

void reportWork(benchmark::State& state, const WorkCounters& before) {
    const auto perStep = benchmark::Counter::kAvgIterations;
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(workCounters.allocations - before.allocations), perStep);
    state.counters["copied"] = benchmark::Counter(
        static_cast<double>(workCounters.bytesCopied - before.bytesCopied), perStep);
}

void receiveAnswer(benchmark::State& state, bool announced) {
    // Large blocks come fresh from the kernel and go back to it: without this the allocator keeps
    // the small ones, and sizes would not compare.
    mallopt(M_MMAP_THRESHOLD, 128 << 10);
    const std::string block(static_cast<size_t>(state.range(1)), 'a');
    for (auto _ : state) {
        RelayingInstance instance;  // a new one each time: room kept from before serves nobody
        instance.deliver(g_nevo_http, "http://127.0.0.1:44444/vpn.php?CONNECT", block,
                         static_cast<size_t>(state.range(0)), announced);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_ReceiveAnnounced(benchmark::State& state) { receiveAnswer(state, true); }
void BM_ReceiveUnannounced(benchmark::State& state) { receiveAnswer(state, false); }

void receiveCases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"bytes", "block"});
    bench->ArgsProduct({{kMegabyte, 8 * kMegabyte, 64 * kMegabyte}, {8128, 64000}});
    bench->Unit(benchmark::kMicrosecond);
}
BENCHMARK(BM_ReceiveAnnounced)->Apply(receiveCases);
BENCHMARK(BM_ReceiveUnannounced)->Apply(receiveCases);

// From a complete answer to the next URL, in both directions: what the page and the service hear.
void BM_RoundTrip(benchmark::State& state) {
    const std::string answer(static_cast<size_t>(state.range(0)), 'a');
    const std::string block(std::min<size_t>(answer.size(), 8128), 'a');
    const std::string result = "the page's answer, 32 bytes long";
    const std::string pageUrl = "javascript:c_addcomm('" + answer + "')";
    RelayingInstance instance;
    const auto step = [&] {
        instance.deliver(g_nevo_http, "http://127.0.0.1:44444/vpn.php?INFO", block, answer.size(),
                         true);
        instance.complete(g_nevo_http, "http://127.0.0.1:44444/vpn.php?INFO");
        instance.deliver(g_s_js, pageUrl.c_str(), result, result.size(), true);
        instance.complete(g_s_js, pageUrl.c_str());
    };
    step();  // the first step makes the room that all others use
    const WorkCounters before = workCounters;
    for (auto _ : state) step();
    reportWork(state, before);
}
BENCHMARK(BM_RoundTrip)->ArgName("bytes")->Arg(100)->Arg(10 << 10)->Arg(kMegabyte);

// The peer.
void BM_Memcpy(benchmark::State& state) {
    const std::string answer(static_cast<size_t>(state.range(0)), 'a');
    std::string copy(answer.size(), '\0');
    for (auto _ : state) {
        memcpy(copy.data(), answer.data(), answer.size());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Memcpy)->ArgName("bytes")->Arg(100)->Arg(10 << 10)->Arg(kMegabyte);

}  // namespace
