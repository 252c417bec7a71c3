// Hexadecimal, URL and number text beside OpenSSL, Qt, GLib and the C library.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <openssl/crypto.h>

#include <QByteArray>
#include <cstdlib>
#include <string>

#include "HexText.h"
#include "NumberText.h"
#include "UrlText.h"

namespace {

// Bytes of which about two in three are letters or digits.
std::string sample(std::size_t length) {
    std::string text(length, '\0');
    unsigned int state = 12345;
    for (char& c : text) {
        state = state * 1103515245 + 12345;
        c = "abcdefgh01234567 /?&=-_."[state / 65536 % 24];
    }
    return text;
}

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

void hexOurs(benchmark::State& state) {
    const std::string text = sample(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            BinToHex(bytesOf(text), static_cast<unsigned int>(text.size()), 0));
    }
}

void hexOpenSSL(benchmark::State& state) {
    const std::string text = sample(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::string result(text.size() * 2 + 1, '\0');
        OPENSSL_buf2hexstr_ex(result.data(), result.size(), nullptr, bytesOf(text), text.size(),
                              '\0');
        benchmark::DoNotOptimize(result);
    }
}

void hexQt(benchmark::State& state) {
    const std::string text = sample(static_cast<std::size_t>(state.range(0)));
    const QByteArray bytes = QByteArray::fromStdString(text);
    for (auto _ : state) benchmark::DoNotOptimize(bytes.toHex());
}

void urlOurs(benchmark::State& state) {
    const CString text(sample(static_cast<std::size_t>(state.range(0))).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(URLEncode(text));
}

void urlQt(benchmark::State& state) {
    const QByteArray text =
        QByteArray::fromStdString(sample(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) benchmark::DoNotOptimize(text.toPercentEncoding({}, "-._~"));
}

void urlGlib(benchmark::State& state) {
    const std::string text = sample(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        char* const encoded = g_uri_escape_string(text.c_str(), nullptr, 0);
        benchmark::DoNotOptimize(encoded);
        g_free(encoded);
    }
}

constexpr char kNumber[] = "1234567";

void numberOurs(benchmark::State& state) {
    const char* text = kNumber;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        bool ok = false;
        benchmark::DoNotOptimize(toInt(text, 0, &ok));
        benchmark::DoNotOptimize(ok);
    }
}

void numberStrtol(benchmark::State& state) {
    const char* text = kNumber;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        char* end = nullptr;
        benchmark::DoNotOptimize(strtol(text, &end, 10));
        benchmark::DoNotOptimize(end);
    }
}

BENCHMARK(hexOurs)->Arg(8)->Arg(1024);
BENCHMARK(hexOpenSSL)->Arg(8)->Arg(1024);
BENCHMARK(hexQt)->Arg(8)->Arg(1024);
BENCHMARK(urlOurs)->Arg(64)->Arg(4096);
BENCHMARK(urlQt)->Arg(64)->Arg(4096);
BENCHMARK(urlGlib)->Arg(64)->Arg(4096);
BENCHMARK(numberOurs);
BENCHMARK(numberStrtol);

}  // namespace
