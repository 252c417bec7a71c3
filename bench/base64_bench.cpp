// Base64 beside the codecs of OpenSSL, modp and GLib, one text an iteration: to memory of its own,
// as callers have it, and, for the encoders that can, to memory that is there.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <modp_b64.h>
#include <openssl/evp.h>

#include <memory>
#include <string>
#include <vector>

#include "CRFCBase64.h"

namespace {

std::vector<unsigned char> sample(std::size_t length) {
    std::vector<unsigned char> bytes(length);
    unsigned int state = 12345;
    for (unsigned char& byte : bytes) {
        state = state * 1103515245 + 12345;
        byte = static_cast<unsigned char>(state >> 16);
    }
    return bytes;
}

std::string encoded(std::size_t length) {
    const std::vector<unsigned char> bytes = sample(length);
    CString text;
    CRFCBase64::Encode(bytes.data(), static_cast<int>(length), text);
    return static_cast<const char*>(text);
}

const char* textOf(const std::vector<unsigned char>& bytes) {
    return reinterpret_cast<const char*>(bytes.data());
}

// Calls `encode` with the bytes of one size again and again.
template <typename Encode>
void encoding(benchmark::State& state, Encode encode) {
    const auto bytes = sample(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(encode(bytes));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// The same with the encoding of those bytes.
template <typename Decode>
void decoding(benchmark::State& state, Decode decode) {
    const std::string text = encoded(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        decode(text);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void encodeOurs(benchmark::State& state) {
    encoding(state, [](const auto& bytes) {
        CString out;
        CRFCBase64::Encode(bytes.data(), static_cast<int>(bytes.size()), out);
        return out;
    });
}

void encodeOpenSSL(benchmark::State& state) {
    encoding(state, [](const auto& bytes) {
        auto out = std::make_unique_for_overwrite<unsigned char[]>(bytes.size() / 3 * 4 + 5);
        EVP_EncodeBlock(out.get(), bytes.data(), static_cast<int>(bytes.size()));
        return out;
    });
}

void encodeModp(benchmark::State& state) {
    encoding(state, [](const auto& bytes) {
        auto out = std::make_unique_for_overwrite<char[]>(modp_b64_encode_len(bytes.size()));
        modp_b64_encode(out.get(), textOf(bytes), bytes.size());
        return out;
    });
}

void encodeGlib(benchmark::State& state) {
    encoding(state, [](const auto& bytes) {
        return std::unique_ptr<gchar, decltype(&g_free)>(
            g_base64_encode(bytes.data(), bytes.size()), g_free);
    });
}

void encodeInPlaceOurs(benchmark::State& state) {
    CString out;
    out.GetBuffer(2 * static_cast<int>(state.range(0)));
    encoding(state, [&](const auto& bytes) {
        out.ReleaseBuffer(0);
        return CRFCBase64::Encode(bytes.data(), static_cast<int>(bytes.size()), out);
    });
}

void encodeInPlaceOpenSSL(benchmark::State& state) {
    std::vector<unsigned char> out(2 * static_cast<std::size_t>(state.range(0)));
    encoding(state, [&](const auto& bytes) {
        return EVP_EncodeBlock(out.data(), bytes.data(), static_cast<int>(bytes.size()));
    });
}

void encodeInPlaceModp(benchmark::State& state) {
    std::vector<char> out(2 * static_cast<std::size_t>(state.range(0)));
    encoding(state, [&](const auto& bytes) {
        return modp_b64_encode(out.data(), textOf(bytes), bytes.size());
    });
}

void decodeOurs(benchmark::State& state) {
    decoding(state, [](const std::string& text) {
        CArray<unsigned char, unsigned char> out;
        CRFCBase64::Decode(text.c_str(), out);
        benchmark::DoNotOptimize(out.GetData());
    });
}

void decodeOpenSSL(benchmark::State& state) {
    decoding(state, [](const std::string& text) {
        auto out = std::make_unique_for_overwrite<unsigned char[]>(text.size());
        EVP_DecodeBlock(out.get(), reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<int>(text.size()));
        benchmark::DoNotOptimize(out);
    });
}

void decodeModp(benchmark::State& state) {
    decoding(state, [](const std::string& text) {
        auto out = std::make_unique_for_overwrite<char[]>(modp_b64_decode_len(text.size()));
        modp_b64_decode(out.get(), text.data(), text.size());
        benchmark::DoNotOptimize(out);
    });
}

void decodeGlib(benchmark::State& state) {
    decoding(state, [](const std::string& text) {
        gsize length = 0;
        guchar* const out = g_base64_decode(text.c_str(), &length);
        benchmark::DoNotOptimize(out);
        g_free(out);
    });
}

void sizes(benchmark::internal::Benchmark* bench) {
    for (const int size : {16, 1 << 10, 64 << 10, 1 << 20}) bench->Arg(size);
}

BENCHMARK(encodeOurs)->Apply(sizes);
BENCHMARK(encodeOpenSSL)->Apply(sizes);
BENCHMARK(encodeModp)->Apply(sizes);
BENCHMARK(encodeGlib)->Apply(sizes);
BENCHMARK(encodeInPlaceOurs)->Apply(sizes);
BENCHMARK(encodeInPlaceOpenSSL)->Apply(sizes);
BENCHMARK(encodeInPlaceModp)->Apply(sizes);
BENCHMARK(decodeOurs)->Apply(sizes);
BENCHMARK(decodeOpenSSL)->Apply(sizes);
BENCHMARK(decodeModp)->Apply(sizes);
BENCHMARK(decodeGlib)->Apply(sizes);

}  // namespace
