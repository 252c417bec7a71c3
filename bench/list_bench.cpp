// Lists beside Qt's and GLib's: adding pointers, splitting and joining text.

#include <benchmark/benchmark.h>
#include <glib.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

#include "UList.h"
#include "UStrings.h"

namespace {

UObject object;

void addOurs(benchmark::State& state) {
    for (auto _ : state) {
        UList list;
        for (int64_t i = 0; i < state.range(0); ++i) list.addObject(&object);
        benchmark::DoNotOptimize(list.getCount());
    }
}

void addQt(benchmark::State& state) {
    for (auto _ : state) {
        QList<UObject*> list;
        for (int64_t i = 0; i < state.range(0); ++i) list.append(&object);
        benchmark::DoNotOptimize(list.size());
    }
}

void addStandard(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<UObject*> list;
        for (int64_t i = 0; i < state.range(0); ++i) list.push_back(&object);
        benchmark::DoNotOptimize(list.data());
    }
}

std::string pieces(int64_t count) {
    std::string text;
    for (int64_t i = 0; i < count; ++i) text += "piece,";
    return text;
}

void splitOurs(benchmark::State& state) {
    const std::string text = pieces(state.range(0));
    for (auto _ : state) {
        const UStrings strings(text.c_str(), ',', 0);
        benchmark::DoNotOptimize(strings.getCount());
    }
}

void splitQt(benchmark::State& state) {
    const QString text = QString::fromStdString(pieces(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(text.split(',', Qt::SkipEmptyParts));
}

void splitQtBytes(benchmark::State& state) {
    const QByteArray text = QByteArray::fromStdString(pieces(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(text.split(','));
}

void splitGlib(benchmark::State& state) {
    const std::string text = pieces(state.range(0));
    for (auto _ : state) {
        char** const strings = g_strsplit(text.c_str(), ",", 0);
        benchmark::DoNotOptimize(strings);
        g_strfreev(strings);
    }
}

void joinOurs(benchmark::State& state) {
    const UStrings strings(pieces(state.range(0)).c_str(), ',', 0);
    for (auto _ : state) benchmark::DoNotOptimize(strings.toString());
}

void joinQt(benchmark::State& state) {
    const QStringList strings =
        QString::fromStdString(pieces(state.range(0))).split(',', Qt::SkipEmptyParts);
    for (auto _ : state) benchmark::DoNotOptimize(strings.join(','));
}

BENCHMARK(addOurs)->Arg(100)->Arg(10000);
BENCHMARK(addQt)->Arg(100)->Arg(10000);
BENCHMARK(addStandard)->Arg(100)->Arg(10000);
// The last is a megabyte of text.
BENCHMARK(splitOurs)->Arg(100)->Arg(10000)->Arg(174763);
BENCHMARK(splitQt)->Arg(100)->Arg(10000)->Arg(174763);
BENCHMARK(splitQtBytes)->Arg(100)->Arg(10000)->Arg(174763);
BENCHMARK(splitGlib)->Arg(100)->Arg(10000)->Arg(174763);
BENCHMARK(joinOurs)->Arg(100)->Arg(10000);
BENCHMARK(joinQt)->Arg(100)->Arg(10000);

}  // namespace
