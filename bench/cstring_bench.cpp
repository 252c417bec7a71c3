// CString beside std::string and QByteArray. Blocks of exact size are required of it, so it has no
// characters inside the object and moves at each append beyond its room; with room reserved, as the
// library reserves it in every loop that appends, an append is a copy.

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "CString.h"

namespace {

template <typename Text>
Text textOf(const std::string& text) {
    return Text(text.c_str());
}

std::string sample(benchmark::State& state) {
    return std::string(static_cast<std::size_t>(state.range(0)), 'x');
}

template <typename Text>
void construct(benchmark::State& state) {
    const std::string source = sample(state);
    for (auto _ : state) {
        Text text(source.c_str());
        benchmark::DoNotOptimize(text);
    }
}

template <typename Text>
void constructEmpty(benchmark::State& state) {
    for (auto _ : state) {
        Text text;
        benchmark::DoNotOptimize(text);
    }
}

template <typename Text>
void copy(benchmark::State& state) {
    const Text source = textOf<Text>(sample(state));
    for (auto _ : state) {
        Text text(source);
        benchmark::DoNotOptimize(text);
    }
}

template <typename Text>
void assign(benchmark::State& state) {
    const Text sources[] = {textOf<Text>(sample(state)), textOf<Text>(sample(state))};
    Text text;
    std::size_t next = 0;
    for (auto _ : state) {
        text = sources[next ^= 1];
        benchmark::DoNotOptimize(text);
    }
}

template <typename Text>
void assignCharacters(benchmark::State& state) {
    const std::string source = sample(state);
    Text text(source.c_str());
    for (auto _ : state) {
        text = source.c_str();
        benchmark::DoNotOptimize(text);
    }
}

template <typename Text>
void add(benchmark::State& state) {
    const Text a = textOf<Text>(sample(state));
    for (auto _ : state) {
        Text sum(a + a);
        benchmark::DoNotOptimize(sum);
    }
}

void reserve(CString& text, int length) { text.GetBuffer(length); }
void reserve(std::string& text, int length) { text.reserve(static_cast<std::size_t>(length)); }
void reserve(QByteArray& text, int length) { text.reserve(length); }

// 128 appends of range(0) bytes.
template <typename Text, bool reserved>
void append(benchmark::State& state) {
    constexpr int count = 128;
    const Text piece = textOf<Text>(sample(state));
    for (auto _ : state) {
        Text text;
        if (reserved) reserve(text, count * static_cast<int>(state.range(0)));
        for (int i = 0; i < count; ++i) text += piece;
        benchmark::DoNotOptimize(text);
    }
}

std::string haystack() { return std::string(1 << 20, 'x') + "\r\n\r\n" + "body"; }

int find(const CString& text, const char* what) { return text.Find(what); }
int find(const QByteArray& text, const char* what) { return text.indexOf(what); }
int find(const std::string& text, const char* what) { return static_cast<int>(text.find(what)); }

template <typename Text>
void findInMegabyte(benchmark::State& state) {
    const Text text = textOf<Text>(haystack());
    for (auto _ : state) benchmark::DoNotOptimize(find(text, "\r\n\r\n"));
}

void replace(CString& text) { text.Replace("%", "%%"); }
void replace(QByteArray& text) { text.replace("%", "%%"); }
void replace(std::string& text) {
    for (std::size_t at = 0; (at = text.find('%', at)) != std::string::npos; at += 2) {
        text.insert(at, 1, '%');
    }
}

// One byte in a hundred of 64 KB is a percent sign that becomes two.
template <typename Text>
void doublePercents(benchmark::State& state) {
    std::string source(1 << 16, 'x');
    for (std::size_t at = 50; at < source.size(); at += 100) source[at] = '%';
    for (auto _ : state) {
        Text text(source.c_str());
        replace(text);
        benchmark::DoNotOptimize(text);
    }
}

CString middle(const CString& text, int count) { return text.Mid(1, count); }
QByteArray middle(const QByteArray& text, int count) { return text.mid(1, count); }
std::string middle(const std::string& text, int count) {
    return text.substr(1, static_cast<std::size_t>(count));
}

template <typename Text>
void mid(benchmark::State& state) {
    const Text text = textOf<Text>(sample(state));
    for (auto _ : state) {
        Text part(middle(text, static_cast<int>(state.range(0)) - 2));
        benchmark::DoNotOptimize(part);
    }
}

void compareNoCase(benchmark::State& state) {
    const CString a('X', static_cast<int>(state.range(0)));
    const CString b('x', static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(a.CompareNoCase(b));
}

void strcasecmpOfTheLocale(benchmark::State& state) {
    const std::string a(static_cast<std::size_t>(state.range(0)), 'X');
    const std::string b(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) benchmark::DoNotOptimize(strcasecmp(a.c_str(), b.c_str()));
}

constexpr const char* kName = "PluginInstance_URLNotify";
constexpr const char* kUrl = "http://127.0.0.1:44444/vpn.php?INFO";

void formatCString(benchmark::State& state) {
    for (auto _ : state) {
        CString text;
        text.Format("[%s] pid='%d' url='%s'\n", kName, 12345, kUrl);
        benchmark::DoNotOptimize(text);
    }
}

void formatSnprintf(benchmark::State& state) {
    for (auto _ : state) {
        char buffer[256];
        const int length =
            snprintf(buffer, sizeof buffer, "[%s] pid='%d' url='%s'\n", kName, 12345, kUrl);
        std::string text(buffer, static_cast<std::size_t>(length));
        benchmark::DoNotOptimize(text);
    }
}

void formatVasprintf(benchmark::State& state) {
    for (auto _ : state) {
        char* text = nullptr;
        benchmark::DoNotOptimize(asprintf(&text, "[%s] pid='%d' url='%s'\n", kName, 12345, kUrl));
        benchmark::DoNotOptimize(text);
        free(text);
    }
}

void formatMegabyteCString(benchmark::State& state) {
    const std::string big(1 << 20, 'x');
    CString text;
    for (auto _ : state) {
        text.Format("[%s]", big.c_str());
        benchmark::DoNotOptimize(text);
    }
}

void formatMegabyteOneCopy(benchmark::State& state) {
    const std::string big(1 << 20, 'x');
    std::string text(big.size() + 2, '\0');
    for (auto _ : state) {
        memcpy(text.data() + 1, big.data(), big.size());
        benchmark::DoNotOptimize(text);
    }
}

BENCHMARK(constructEmpty<CString>);
BENCHMARK(constructEmpty<std::string>);
BENCHMARK(constructEmpty<QByteArray>);

#define EVERY_TEXT(name, ...)                          \
    BENCHMARK_TEMPLATE(name, CString) __VA_ARGS__;     \
    BENCHMARK_TEMPLATE(name, std::string) __VA_ARGS__; \
    BENCHMARK_TEMPLATE(name, QByteArray) __VA_ARGS__

EVERY_TEXT(construct, ->Arg(12)->Arg(64)->Arg(1024));
EVERY_TEXT(copy, ->Arg(12)->Arg(64)->Arg(1024));
EVERY_TEXT(assign, ->Arg(12)->Arg(64)->Arg(1024));
EVERY_TEXT(assignCharacters, ->Arg(12)->Arg(64)->Arg(1024));
EVERY_TEXT(add, ->Arg(64));
EVERY_TEXT(findInMegabyte);
EVERY_TEXT(doublePercents);
EVERY_TEXT(mid, ->Arg(12)->Arg(64)->Arg(1024));

#define EVERY_APPEND(reserved)                                             \
    BENCHMARK_TEMPLATE(append, CString, reserved)->Arg(16)->Arg(8128);     \
    BENCHMARK_TEMPLATE(append, std::string, reserved)->Arg(16)->Arg(8128); \
    BENCHMARK_TEMPLATE(append, QByteArray, reserved)->Arg(16)->Arg(8128)

EVERY_APPEND(false);
EVERY_APPEND(true);

BENCHMARK(compareNoCase)->Arg(64);
BENCHMARK(strcasecmpOfTheLocale)->Arg(64);
BENCHMARK(formatCString);
BENCHMARK(formatSnprintf);
BENCHMARK(formatVasprintf);
BENCHMARK(formatMegabyteCString);
BENCHMARK(formatMegabyteOneCopy);

}  // namespace
