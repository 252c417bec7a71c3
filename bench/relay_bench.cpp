// The plug-in's own share of a connection, against a browser that does nothing and with no log
// object. The peer is one memcpy of the same answer, run beside it.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <string>

#include "IUErrorLog.h"
#include "relaying_instance.h"
#include "work_counters.h"

namespace {

constexpr int64_t kMegabyte = 1 << 20;

void reportWork(benchmark::State& state, const WorkCounters& before) {
    const auto perStep = benchmark::Counter::kAvgIterations;
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(workCounters.allocations - before.allocations), perStep);
    state.counters["copied"] = benchmark::Counter(
        static_cast<double>(workCounters.bytesCopied - before.bytesCopied), perStep);
}

void receiveAnswer(benchmark::State& state, bool announced) {
    errorLog = nullptr;
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

void BM_RoundTrip(benchmark::State& state) {
    errorLog = nullptr;
    RelayedRounds rounds(static_cast<size_t>(state.range(0)));
    rounds.goRound();  // the first makes the room that all others use
    const WorkCounters before = workCounters;
    for (auto _ : state) rounds.goRound();
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
