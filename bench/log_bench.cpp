// One item of the file log beside spdlog's basic file sink, which flushes after every item as the
// library must, and beside a bare write of the same bytes: the system call that a flush is. And the
// calls that write nothing, beside the virtual calls that their tests of the level are.

#include <benchmark/benchmark.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>

#include "ErrorLogLevels.h"
#include "IUErrorLog.h"
#include "UFileErrorLog.h"
#include "log_home.h"
#include "plugin_log.h"

namespace {

// An item of range(0) bytes, its line end included.
std::string itemOf(benchmark::State& state) {
    return std::string(static_cast<std::size_t>(state.range(0)) - 1, 'x') + '\n';
}

// What stands before an item's text, "0,,,, " included; the numbers are as long as real ones.
constexpr char kHeader[] = "2024-03-05, 7:08:09:010, 12345,12345,nevo_plugin, 0,,,, ";

// Opens the program's own log at `level` for as long as it lives.
class OpenAtLevel {
  public:
    explicit OpenAtLevel(int level) {
        const std::string path = LogHome::get().logs() + "own.log";
        errorLog->setParam("module_name", "nevo_plugin");
        errorLog->Open(path.c_str(), "a");
        errorLog->SetLogLevel(level);
    }
    ~OpenAtLevel() { errorLog->Close(); }
    OpenAtLevel(const OpenAtLevel&) = delete;
    OpenAtLevel& operator=(const OpenAtLevel&) = delete;
};

void openLog(UFileErrorLog& log, const std::string& path) {
    log.setParam("module_name", "nevo_plugin");
    log.Open(path.c_str(), "a");
}

void itemOurs(benchmark::State& state) {
    const std::string item = itemOf(state);
    const std::string path = LogHome::get().logs() + "ours.log";
    UFileErrorLog log;
    openLog(log, path);
    Emptied file(path);
    for (auto _ : state) {
        benchmark::DoNotOptimize(log.WriteLogStr(item.c_str()));
        file.grewBy(state, item.size() + sizeof kHeader);
    }
}

// As the plug-in writes its lines; its log is the program's own.
void itemOfThePlugin(benchmark::State& state) {
    const std::string item = itemOf(state);
    const OpenAtLevel open(63);
    Emptied file(errorLog->GetLogName());
    for (auto _ : state) {
        PluginWriteLog(0, "%s", item.c_str());
        file.grewBy(state, item.size() + sizeof kHeader);
    }
}

void itemSpdlog(benchmark::State& state) {
    const std::string item = itemOf(state);
    const std::string path = LogHome::get().logs() + "spdlog.log";
    spdlog::logger log("nevo_plugin", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path));
    // The same columns; the item brings its line end.
    log.set_formatter(std::make_unique<spdlog::pattern_formatter>(
        "%Y-%m-%d,%H:%M:%S:%e, %P,%t,%n, 0,,,, %v", spdlog::pattern_time_type::local, ""));
    log.flush_on(spdlog::level::trace);
    Emptied file(path);
    for (auto _ : state) {
        log.info(spdlog::string_view_t(item));
        file.grewBy(state, item.size() + sizeof kHeader);
    }
}

void itemBareWrite(benchmark::State& state) {
    const std::string line = kHeader + itemOf(state);
    const BareFile bare("bare.log");
    Emptied file(bare.path());
    for (auto _ : state) {
        bare.write(line);
        file.grewBy(state, line.size());
    }
}

void filteredWriteLog(benchmark::State& state) {
    const OpenAtLevel open(31);
    for (auto _ : state) {
        benchmark::DoNotOptimize(errorLog->WriteLog(48, "pid='%d' url='%s'\n", 12345, "INFO"));
    }
}

void filteredLevel1(benchmark::State& state) {
    const OpenAtLevel open(1);
    for (auto _ : state) ERRORLOGLEVEL1("pid='%d' url='%s'\n", 12345, "INFO");
}

void filteredLevel2(benchmark::State& state) {
    const OpenAtLevel open(47);
    for (auto _ : state) ERRORLOGLEVEL2("pid='%d' url='%s'\n", 12345, "INFO");
}

void filteredLevel3(benchmark::State& state) {
    const OpenAtLevel open(63);
    for (auto _ : state) ERRORLOGLEVEL3("pid='%d' url='%s'\n", 12345, "INFO");
}

// The library does not see what is behind the pointer either.
void threeVirtualCalls(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < 3; ++i) benchmark::DoNotOptimize(errorLog->GetLogLevel());
    }
}

BENCHMARK(itemOurs)->ArgName("bytes")->Arg(60)->Arg(1 << 10)->Arg(100 << 10);
BENCHMARK(itemOfThePlugin)->ArgName("bytes")->Arg(60)->Arg(1 << 10)->Arg(100 << 10);
BENCHMARK(itemSpdlog)->ArgName("bytes")->Arg(60)->Arg(1 << 10)->Arg(100 << 10);
BENCHMARK(itemBareWrite)->ArgName("bytes")->Arg(60)->Arg(1 << 10)->Arg(100 << 10);
BENCHMARK(filteredWriteLog);
BENCHMARK(filteredLevel1);
BENCHMARK(filteredLevel2);
BENCHMARK(filteredLevel3);
BENCHMARK(threeVirtualCalls);

}  // namespace
