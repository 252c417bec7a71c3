// The byte buffer beside containers that a caller would put in its place: one chunk pushed and one
// popped an iteration, with 30000 bytes standing.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/circular_buffer.hpp>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>

#include "CFIFOBuffer.h"

namespace {

constexpr int kCapacity = 70000;
constexpr std::size_t kStanding = 30000;

using Bytes = std::basic_string<unsigned char>;

// The product's own, with its lock (mode 0) or without.
class Ours {
  public:
    explicit Ours(int mode) : m_fifo(kCapacity) { m_fifo.setMode(mode); }
    void push(Bytes& chunk) { m_fifo.push(chunk.data(), static_cast<long>(chunk.size())); }
    void pop(Bytes& chunk) { m_fifo.pop(chunk.data(), static_cast<long>(chunk.size())); }

  private:
    CFIFOBuffer m_fifo;
};

struct Locking : Ours {
    Locking() : Ours(0) {}
};
struct Unlocked : Ours {
    Unlocked() : Ours(1) {}
};

// As its documentation has it: by iterators.
class Circular {
  public:
    void push(const Bytes& chunk) { m_bytes.insert(m_bytes.end(), chunk.begin(), chunk.end()); }
    void pop(Bytes& chunk) {
        const auto end = m_bytes.begin() + static_cast<std::ptrdiff_t>(chunk.size());
        std::copy(m_bytes.begin(), end, chunk.begin());
        m_bytes.erase_begin(chunk.size());
    }

  private:
    boost::circular_buffer<unsigned char> m_bytes{kCapacity};
};

// The fastest way to read it: by its two segments of memory.
class CircularSegments {
  public:
    void push(const Bytes& chunk) { m_bytes.insert(m_bytes.end(), chunk.begin(), chunk.end()); }
    void pop(Bytes& chunk) {
        const auto first = m_bytes.array_one();
        const std::size_t length = std::min(first.second, chunk.size());
        std::memcpy(chunk.data(), first.first, length);
        std::memcpy(chunk.data() + length, m_bytes.array_two().first, chunk.size() - length);
        m_bytes.erase_begin(chunk.size());
    }

  private:
    boost::circular_buffer<unsigned char> m_bytes{kCapacity};
};

class Deque {
  public:
    void push(const Bytes& chunk) { m_bytes.insert(m_bytes.end(), chunk.begin(), chunk.end()); }
    void pop(Bytes& chunk) {
        const auto end = m_bytes.begin() + static_cast<std::ptrdiff_t>(chunk.size());
        std::copy(m_bytes.begin(), end, chunk.begin());
        m_bytes.erase(m_bytes.begin(), end);
    }

  private:
    std::deque<unsigned char> m_bytes;
};

// A peer behind the kind of lock that the product has.
template <typename Peer>
class Guarded {
  public:
    void push(const Bytes& chunk) {
        const std::lock_guard lock(m_mutex);
        m_peer.push(chunk);
    }
    void pop(Bytes& chunk) {
        const std::lock_guard lock(m_mutex);
        m_peer.pop(chunk);
    }

  private:
    std::recursive_mutex m_mutex;
    Peer m_peer;
};

template <typename Fifo>
void pushAndPop(benchmark::State& state) {
    Fifo fifo;
    Bytes standing(kStanding, 's');
    fifo.push(standing);
    Bytes chunk(static_cast<std::size_t>(state.range(0)), 'c');
    for (auto _ : state) {
        fifo.push(chunk);
        fifo.pop(chunk);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* bench) {
    for (const int size : {64, 1500, 16 << 10}) bench->Arg(size);
}

BENCHMARK(pushAndPop<Unlocked>)->Apply(sizes);
BENCHMARK(pushAndPop<CircularSegments>)->Apply(sizes);
BENCHMARK(pushAndPop<Circular>)->Apply(sizes);
BENCHMARK(pushAndPop<Deque>)->Apply(sizes);
BENCHMARK(pushAndPop<Locking>)->Apply(sizes);
BENCHMARK(pushAndPop<Guarded<CircularSegments>>)->Apply(sizes);
BENCHMARK(pushAndPop<Guarded<Deque>>)->Apply(sizes);

}  // namespace
