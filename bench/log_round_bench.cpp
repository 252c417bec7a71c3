// A round of the relay with its log open, against a browser that does nothing, beside bare writes
// of the very same lines.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "log_home.h"
#include "relaying_instance.h"

namespace {

constexpr char kLogName[] = "nevo_plugin.log";

// The instance opens the log and closes it.
class LoggedRounds {
  public:
    explicit LoggedRounds(std::size_t answerSize) : m_rounds(answerSize) {
        m_rounds.goRound();  // the first makes the room that all others use
    }

    void goRound() { m_rounds.goRound(); }

    // The lines that one round writes; each ends with the only line end in it.
    std::vector<std::string> linesOfARound() {
        const std::string path = m_home.logs() + kLogName;
        std::filesystem::resize_file(path, 0);
        goRound();
        std::vector<std::string> lines;
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) lines.push_back(line + '\n');
        return lines;
    }

  private:
    const LogHome& m_home = LogHome::get();  // before the instance that opens the log in it
    RelayedRounds m_rounds;
};

std::size_t sizeOf(const std::vector<std::string>& lines) {
    std::size_t size = 0;
    for (const std::string& line : lines) size += line.size();
    return size;
}

void report(benchmark::State& state, const std::vector<std::string>& lines) {
    state.counters["lines"] = static_cast<double>(lines.size());
    state.counters["logged"] = static_cast<double>(sizeOf(lines));
}

void roundLogged(benchmark::State& state) {
    LoggedRounds rounds(static_cast<std::size_t>(state.range(0)));
    const std::vector<std::string> lines = rounds.linesOfARound();
    const std::size_t size = sizeOf(lines);
    Emptied file(LogHome::get().logs() + kLogName);
    for (auto _ : state) {
        rounds.goRound();
        file.grewBy(state, size);
    }
    report(state, lines);
}

void roundBareWrites(benchmark::State& state) {
    const std::vector<std::string> lines =
        LoggedRounds(static_cast<std::size_t>(state.range(0))).linesOfARound();
    const std::size_t size = sizeOf(lines);
    const BareFile bare("bare_round.log");
    Emptied file(bare.path());
    for (auto _ : state) {
        for (const std::string& line : lines) bare.write(line);
        file.grewBy(state, size);
    }
    report(state, lines);
}

BENCHMARK(roundLogged)->ArgName("bytes")->Arg(100)->Arg(10 << 10)->Arg(1 << 20);
BENCHMARK(roundBareWrites)->ArgName("bytes")->Arg(100)->Arg(10 << 10)->Arg(1 << 20);

}  // namespace
