// Signing a message beside the keyed MD5 of OpenSSL and nettle, each with a key of 64 bytes and
// its signature as Base64, the form in which it is sent.

#include <benchmark/benchmark.h>
#include <nettle/hmac.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <string>

#include "ClientData.h"

namespace {

constexpr std::size_t kDigest = 16;
constexpr std::size_t kSignature = 24;

using Digest = std::array<unsigned char, kDigest>;
using Signature = std::array<char, kSignature + 1>;

const std::array<unsigned char, 64> kKey = [] {
    std::array<unsigned char, 64> key;
    key.fill('k');
    return key;
}();

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string messageOf(const benchmark::State& state) {
    return std::string(static_cast<std::size_t>(state.range(0)), 'm');
}

void show(const Digest& digest, Signature& signature) {
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(signature.data()), digest.data(), kDigest);
    benchmark::DoNotOptimize(signature);
}

void signOurs(benchmark::State& state) {
    const std::string message = messageOf(state);
    for (auto _ : state) benchmark::DoNotOptimize(signMessage(message.c_str(), "token"));
}

void signOpenSSL(benchmark::State& state) {
    const std::string message = messageOf(state);
    Digest digest;
    Signature signature;
    for (auto _ : state) {
        HMAC(EVP_md5(), kKey.data(), static_cast<int>(kKey.size()), bytesOf(message),
             message.size(), digest.data(), nullptr);
        show(digest, signature);
    }
}

void signNettle(benchmark::State& state) {
    const std::string message = messageOf(state);
    Digest digest;
    Signature signature;
    for (auto _ : state) {
        hmac_md5_ctx context;
        hmac_md5_set_key(&context, kKey.size(), kKey.data());
        hmac_md5_update(&context, message.size(), bytesOf(message));
        hmac_md5_digest(&context, kDigest, digest.data());
        show(digest, signature);
    }
}

// With the key's pads hashed beforehand, as ours are.
void signNettleKeyOnce(benchmark::State& state) {
    const std::string message = messageOf(state);
    Digest digest;
    Signature signature;
    hmac_md5_ctx context;
    hmac_md5_set_key(&context, kKey.size(), kKey.data());
    for (auto _ : state) {
        hmac_md5_update(&context, message.size(), bytesOf(message));
        hmac_md5_digest(&context, kDigest, digest.data());
        show(digest, signature);
    }
}

BENCHMARK(signOurs)->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK(signOpenSSL)->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK(signNettle)->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK(signNettleKeyOnce)->Arg(30)->Arg(300)->Arg(3000);

}  // namespace
