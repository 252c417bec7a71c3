#pragma once

#include <filesystem>
#include <string>

#include "child_process.h"
#include "plugin_test.h"
#include "service_files.h"

// An instance in conversation, for the tests of the relay's parts.

inline constexpr char kService[] = "http://127.0.0.1:44444/vpn.php";
inline constexpr char kDrop[] = "- javascript:c_addcomm('ssldrop')";

/// The request that hands `answer` to the page, as `summary` shows it.
inline std::string toPage(const std::string& answer) {
    return "2 javascript:c_addcomm('" + answer + "')";
}

/// The request that hands `command` to the service.
inline std::string toService(const std::string& command, int counter) {
    return std::string("3 ") + kService + "?" + command + "&z=" + std::to_string(counter);
}

class Relay : public PluginTest {
  protected:
    Relay() { removeServiceFiles(); }
    ~Relay() override { removeServiceFiles(); }

    // An instance that has started the service and waits for the answer to its first request.
    void launch(Embedding& instance) {
        installService("exit=0");
        ASSERT_EQ(instance.create({{"last_param", ""}}), 0);
        forget();
    }
    // An instance that has found the service running.
    void findRunning(Embedding& instance) {
        const ChildProcess running("nevo");
        writePidFile(std::to_string(running.pid()));
        ASSERT_EQ(instance.create({{"last_param", ""}}), 0);
        std::filesystem::remove(kPidFile);
        forget();
    }
    void probe(Embedding& instance) {
        ASSERT_EQ(instance.create({{"_probevpn", ""}}), 0);
        forget();
    }

    // Empties log and account but for the request that waits for its answer.
    void forget() {
        log.clear();
        browser.calls.clear();
        browser.requests.erase(browser.requests.begin(), browser.requests.end() - 1);
    }

    // Answers the last request.
    void answer(std::string_view text, const Delivery& how = {}) {
        page.deliver(browser.lastRequest(), text, how);
    }

    std::string last() const { return summary(browser.requests).back(); }

    Embedding page{plugin};
};
