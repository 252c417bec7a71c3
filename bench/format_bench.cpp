// Positional formatting beside fmt, QString::arg and snprintf.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <QString>
#include <cstdio>
#include <string>

#include "StrFormat.h"
#include "UGuarded.h"
#include "URaise.h"

namespace {

// The record that the library writes most: level, unit, line, function, text.
constexpr const char* kUnit = "/FIFOBuffer.cpp";
constexpr const char* kFunction = "CFIFOBuffer::push";
constexpr const char* kText = "EXCEPTION caught: CFIFOBuffer::push - exception";

void recordSfmt(benchmark::State& state) {
    for (auto _ : state) {
        const StrFormat record = sfmt("%1, %2, %3, %4, %5\n", 1, kUnit, 321U, kFunction, kText);
        benchmark::DoNotOptimize(static_cast<const char*>(record));
    }
}

void recordFmt(benchmark::State& state) {
    for (auto _ : state) {
        const std::string record = fmt::format(fmt::runtime("{0}, {1}, {2}, {3}, {4}\n"), 1, kUnit,
                                               321U, kFunction, kText);
        benchmark::DoNotOptimize(record.data());
    }
}

void recordQString(benchmark::State& state) {
    for (auto _ : state) {
        const QString record =
            QString("%1, %2, %3, %4, %5\n").arg(1).arg(kUnit).arg(321U).arg(kFunction).arg(kText);
        benchmark::DoNotOptimize(record.constData());
    }
}

void recordQStringMulti(benchmark::State& state) {
    for (auto _ : state) {
        const QString record = QString("%1, %2, %3, %4, %5\n")
                                   .arg(QString::number(1), QString(kUnit), QString::number(321U),
                                        QString(kFunction), QString(kText));
        benchmark::DoNotOptimize(record.constData());
    }
}

// Numbered operands are POSIX, not ISO C++.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
void recordSnprintf(benchmark::State& state) {
    for (auto _ : state) {
        char record[256];
        snprintf(record, sizeof record, "%1$d, %2$s, %3$u, %4$s, %5$s\n", 1, kUnit, 321U, kFunction,
                 kText);
        benchmark::DoNotOptimize(record);
    }
}

#pragma GCC diagnostic pop

void twoIntsStrFormat(benchmark::State& state) {
    for (auto _ : state) {
        const StrFormat text = StrFormat("%1 of %2").arg(3).arg(7);
        benchmark::DoNotOptimize(static_cast<const char*>(text));
    }
}

void twoIntsFmt(benchmark::State& state) {
    for (auto _ : state) {
        const std::string text = fmt::format(fmt::runtime("{0} of {1}"), 3, 7);
        benchmark::DoNotOptimize(text.data());
    }
}

void twoIntsQString(benchmark::State& state) {
    for (auto _ : state) {
        const QString text = QString("%1 of %2").arg(3).arg(7);
        benchmark::DoNotOptimize(text.constData());
    }
}

void intCreateString(benchmark::State& state) {
    int value = 1234567;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        const CString text = createString(value);
        benchmark::DoNotOptimize(static_cast<const char*>(text));
    }
}

void intToString(benchmark::State& state) {
    int value = 1234567;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        const std::string text = std::to_string(value);
        benchmark::DoNotOptimize(text.data());
    }
}

void intSnprintf(benchmark::State& state) {
    int value = 1234567;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        char text[25];
        snprintf(text, sizeof text, "%d", value);
        benchmark::DoNotOptimize(text);
    }
}

// Raised, formatted, caught; with no log object.
void raiseAndCatch(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            UGuarded("work() - EXCEPTION", [] { URaise("work()", "work failed", 5); }));
    }
}

BENCHMARK(recordSfmt);
BENCHMARK(recordFmt);
BENCHMARK(recordQString);
BENCHMARK(recordQStringMulti);
BENCHMARK(recordSnprintf);
BENCHMARK(twoIntsStrFormat);
BENCHMARK(twoIntsFmt);
BENCHMARK(twoIntsQString);
BENCHMARK(intCreateString);
BENCHMARK(intToString);
BENCHMARK(intSnprintf);
BENCHMARK(raiseAndCatch);

}  // namespace
