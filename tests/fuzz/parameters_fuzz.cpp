// Parameters of any names and values: each is kept, forwarded or obeyed as the first marker in its
// name says, the text for the service ends with the browser's process, and a password comes out
// nowhere.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "fuzz_input.h"
#include "fuzz_plugin.h"
#include "plugin_instance.h"

namespace {

using Parameters = std::vector<std::pair<std::string, std::string>>;

constexpr char kSecret[] = "(the password)";
constexpr std::size_t kForwarded = 9;

// The place of the first marker that `name` holds.
std::size_t ruleOf(const std::string& name) {
    static const char* const markers[kForwarded] = {
        "_userpassword", "_installmethod", "_installvpn", "_probevpn", "last_param",
        "hostrooturl",   "signature",      "nevourl",     "nevosize"};
    std::size_t rule = 0;
    while (rule < kForwarded && name.find(markers[rule]) == std::string::npos) ++rule;
    return rule;
}

Parameters readParameters(FuzzInput& input) {
    Parameters parameters;
    while (!input.isEmpty() && parameters.size() < 30) {
        std::string name = input.line();
        std::string value = input.line();
        if (ruleOf(name) == 0) value = kSecret + value;
        // Nothing else may look like the password.
        else if ((name + "=" + value).find(kSecret) != std::string::npos)
            continue;
        parameters.emplace_back(std::move(name), std::move(value));
    }
    return parameters;
}

// What the parameters mean, one rule after the other.
struct Meaning {
    std::string launchText;
    std::string hostRoot, signature, url, size;
    bool probes = false;
    bool launches = false;

    explicit Meaning(const Parameters& parameters) {
        for (const auto& [name, value] : parameters) {
            const std::size_t rule = ruleOf(name);
            if (rule == 3) probes = true;
            if (rule == 4) launches = true;
            if (rule == 5) hostRoot = value;
            if (rule == 6) signature = value;
            if (rule == 7) url = value;
            if (rule == 8) size = value;
            if (rule == kForwarded) launchText += name + "=" + value + "&";
        }
        launchText += "browser_pid=" + std::to_string(getpid()) + "&";
    }
};

void expectNoSecret(const FuzzPlugin& host) {
    EXPECT_FALSE(host.log.contains(kSecret));
    for (const std::string& text : machine().starts) {
        EXPECT_EQ(text.find(kSecret), std::string::npos);
    }
    for (const std::string& call : host.browser.calls) {
        EXPECT_EQ(call.find(kSecret), std::string::npos);
    }
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const Parameters parameters = readParameters(input);
    const Meaning meaning(parameters);
    FuzzPlugin host;
    Embedding page(host.plugin);
    Embedding::Parameters given;
    for (const auto& [name, value] : parameters) given.emplace_back(name.c_str(), value.c_str());
    ASSERT_EQ(page.create(given), 0);

    const nsPluginInstance& record = page.record();
    EXPECT_STREQ(*record.hostRootUrl, meaning.hostRoot.c_str());
    EXPECT_STREQ(*record.signature, meaning.signature.c_str());
    EXPECT_STREQ(*record.nevoUrl, meaning.url.c_str());
    EXPECT_STREQ(*record.nevoSize, meaning.size.c_str());
    EXPECT_EQ(record.probeVpn, meaning.probes ? 1 : 0);

    const bool launches = meaning.launches && !meaning.probes;
    EXPECT_EQ(record.doNotTerminate, launches ? 0 : 1);
    EXPECT_EQ(machine().starts,
              launches ? std::vector{meaning.launchText} : std::vector<std::string>());
    EXPECT_EQ(host.lastUrl(), meaning.probes ? "http://127.0.0.1:44444/vpn.php?INFO"
                              : launches     ? "http://127.0.0.1:44444/vpn.php?CONNECT"
                                             : "");
    EXPECT_EQ(host.log.linesStarting("[NS_NewPluginInstance] vpnA:='"),
              std::vector{"[NS_NewPluginInstance] vpnA:='" + meaning.launchText + "'\n"});
    expectNoSecret(host);
}
