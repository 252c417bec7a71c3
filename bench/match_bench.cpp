// Wildcards, addresses, subnets and expressions beside the C library's fnmatch and inet_pton, and
// RE2, whose expressions are compiled beforehand, as our patterns are.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <re2/re2.h>
#include <re2/set.h>

#include <string>
#include <vector>

#include "NumberText.h"
#include "StringHelper.h"
#include "UExpressionMatch.h"
#include "UIPSubnetMatch.h"
#include "UPatternMatch.h"

namespace {

struct Wildcard {
    const char* pattern;
    std::string text;
};

const Wildcard& wildcard(int64_t index) {
    static const Wildcard table[] = {
        {"*.example.com", "www.portal.example.com"},
        {"*.example.com", "www.portal.example.org"},
        {"web*eu*example.com", "web-17.eu-west.example.com"},
        {"*needle*end", std::string(2000, 'x') + "needle" + std::string(2080, 'y') + "end"},
    };
    return table[index];
}

// The regular expression of a pattern with asterisks.
std::string regexOf(const char* pattern) {
    std::string regex;
    for (const char* at = pattern; *at != '\0'; ++at) {
        regex += *at == '*' ? "(?s:.*)" : RE2::QuoteMeta(re2::StringPiece(at, 1));
    }
    return regex;
}

void wildcardOurs(benchmark::State& state) {
    const Wildcard& row = wildcard(state.range(0));
    const UPatternMatch matcher(row.pattern);
    for (auto _ : state) benchmark::DoNotOptimize(matcher.match(row.text.c_str()));
}

void wildcardOurParts(benchmark::State& state) {
    const Wildcard& row = wildcard(state.range(0));
    UStrings parts;
    StringHelper::prepareFilter(row.pattern, parts);
    for (auto _ : state) benchmark::DoNotOptimize(StringHelper::match(row.text.c_str(), parts));
}

void wildcardFnmatch(benchmark::State& state) {
    const Wildcard& row = wildcard(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(fnmatch(row.pattern, row.text.c_str(), 0));
}

void wildcardRE2(benchmark::State& state) {
    const Wildcard& row = wildcard(state.range(0));
    const RE2 regex(regexOf(row.pattern));
    for (auto _ : state) benchmark::DoNotOptimize(RE2::FullMatch(row.text, regex));
}

const char* const kAddress = "192.168.117.42";

unsigned int byInetPton(const char* text) {
    in_addr address{};
    return inet_pton(AF_INET, text, &address) == 1 ? ntohl(address.s_addr) : 0;
}

void addressOurs(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(strIPtoDWORD(kAddress));
}

void addressInetPton(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(byInetPton(kAddress));
}

void subnetOurs(benchmark::State& state) {
    const UIPSubnetMatch matcher("192.168.0.0/16");
    for (auto _ : state) benchmark::DoNotOptimize(matcher.match(kAddress));
}

void subnetInetPton(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize((byInetPton(kAddress) & 0xffff0000U) == 0xc0a80000U);
    }
}

constexpr int kMembers = 100;

// The subnets 10.0.0.0/24 to 10.0.99.0/24, and an address of the last.
std::string subnets() {
    std::string text;
    for (int i = 0; i < kMembers; ++i) text += "10.0." + std::to_string(i) + ".0/24,";
    return text;
}
const char* const kLastSubnet = "10.0.99.7";

void subnetsOurs(benchmark::State& state) {
    const UExpressionMatch expression(subnets().c_str(), UExpressionMatch::kSubnet);
    for (auto _ : state) benchmark::DoNotOptimize(expression.match(kLastSubnet));
}

void subnetsInetPtonEach(benchmark::State& state) {
    for (auto _ : state) {
        bool isMatch = false;
        for (unsigned int i = 0; i < kMembers && !isMatch; ++i) {
            isMatch = (byInetPton(kLastSubnet) & 0xffffff00U) == (0x0a000000U | i << 8);
        }
        benchmark::DoNotOptimize(isMatch);
    }
}

void subnetsRE2(benchmark::State& state) {
    std::string regex;
    for (int i = 0; i < kMembers; ++i) {
        regex += (i > 0 ? "|" : "") + ("10\\.0\\." + std::to_string(i)) + "\\.[0-9]{1,3}";
    }
    const RE2 compiled(regex);
    for (auto _ : state) benchmark::DoNotOptimize(RE2::FullMatch(kLastSubnet, compiled));
}

std::string host(int i) { return "*.host" + std::to_string(i) + ".example.com"; }
const char* const kLastHost = "www.host99.example.com";

void hostsOurs(benchmark::State& state) {
    std::string text;
    for (int i = 0; i < kMembers; ++i) text += host(i) + ",";
    const UExpressionMatch expression(text.c_str(), UExpressionMatch::kDns);
    for (auto _ : state) benchmark::DoNotOptimize(expression.match(kLastHost));
}

void hostsFnmatch(benchmark::State& state) {
    std::vector<std::string> patterns;
    for (int i = 0; i < kMembers; ++i) patterns.push_back(host(i));
    for (auto _ : state) {
        bool isMatch = false;
        for (const std::string& pattern : patterns) {
            isMatch = fnmatch(pattern.c_str(), kLastHost, FNM_CASEFOLD) == 0;
            if (isMatch) break;
        }
        benchmark::DoNotOptimize(isMatch);
    }
}

void hostsRE2Set(benchmark::State& state) {
    RE2::Options options;
    options.set_case_sensitive(false);
    RE2::Set set(options, RE2::ANCHOR_BOTH);
    for (int i = 0; i < kMembers; ++i) set.Add(regexOf(host(i).c_str()), nullptr);
    if (!set.Compile()) state.SkipWithError("RE2::Set::Compile");
    for (auto _ : state) benchmark::DoNotOptimize(set.Match(kLastHost, nullptr));
}

BENCHMARK(wildcardOurs)->DenseRange(0, 3);
BENCHMARK(wildcardOurParts)->DenseRange(0, 3);
BENCHMARK(wildcardFnmatch)->DenseRange(0, 3);
BENCHMARK(wildcardRE2)->DenseRange(0, 3);
BENCHMARK(addressOurs);
BENCHMARK(addressInetPton);
BENCHMARK(subnetOurs);
BENCHMARK(subnetInetPton);
BENCHMARK(subnetsOurs);
BENCHMARK(subnetsInetPtonEach);
BENCHMARK(subnetsRE2);
BENCHMARK(hostsOurs);
BENCHMARK(hostsFnmatch);
BENCHMARK(hostsRE2Set);

}  // namespace
