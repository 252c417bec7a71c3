// CMD5 beside the digests of OpenSSL and nettle, one whole hash an iteration.

#include <benchmark/benchmark.h>
#include <nettle/md5.h>
#include <openssl/evp.h>

#include <array>
#include <string>

#include "CMD5.h"

namespace {

using Digest = std::array<unsigned char, 16>;
using Hash = void (*)(unsigned char* digest, const unsigned char* data, std::size_t length);

void ours(unsigned char* digest, const unsigned char* data, std::size_t length) {
    CMD5 md5;
    md5.HashBuffer(digest, data, static_cast<int>(length));
}

void openssl(unsigned char* digest, const unsigned char* data, std::size_t length) {
    static EVP_MD* const algorithm = EVP_MD_fetch(nullptr, "MD5", nullptr);
    static EVP_MD_CTX* const context = EVP_MD_CTX_new();
    EVP_DigestInit_ex2(context, algorithm, nullptr);
    EVP_DigestUpdate(context, data, length);
    EVP_DigestFinal_ex(context, digest, nullptr);
}

void nettle(unsigned char* digest, const unsigned char* data, std::size_t length) {
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, length, data);
    md5_digest(&context, MD5_DIGEST_SIZE, digest);
}

void hash(benchmark::State& state, Hash function) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'x');
    Digest digest;
    for (auto _ : state) {
        function(digest.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
        benchmark::DoNotOptimize(digest);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK_CAPTURE(hash, CMD5, ours)->Arg(16)->Arg(64)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK_CAPTURE(hash, OpenSSL, openssl)->Arg(16)->Arg(64)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK_CAPTURE(hash, nettle, nettle)->Arg(16)->Arg(64)->Arg(1 << 10)->Arg(1 << 20);

}  // namespace
