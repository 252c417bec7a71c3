// A conversation of any answers between page and service: every request is the answer with its
// fixed text around it, the counter goes up by one a request, and the loop ends where it must.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "fuzz_input.h"
#include "fuzz_plugin.h"
#include "plugin_instance.h"
#include "text_of.h"

namespace {

enum class Kind { probe, launched, foundRunning };

// The number that the next request to the service carries, over all conversations.
long nextNumber = 0;

// What the plug-in must do with each completed request.
class Model {
  public:
    explicit Model(Kind kind) : m_kind(kind) {}

    // The request that follows; "" when there is none.
    std::string afterPage(const std::string& evaluated) {
        if (m_kind == Kind::launched && machine().pidFile && !machine().processLives) return drop();
        if (m_kind != Kind::launched) return "";
        if (evaluated.find("LOGGING_DISABLE") != std::string::npos) level = 31;
        if (evaluated.find("LOGGING_ENABLE") != std::string::npos) level = 63;
        if (data.empty()) data = "INFO";
        return kToService + data + "&z=" + std::to_string(nextNumber++);
    }

    std::string afterService(bool networkError) {
        if (networkError) {
            if (machine().answer.value_or("").empty()) return drop();
            data = bodyOf(machine().answer->substr(0, 1000).c_str());
        }
        const std::size_t blankLine = std::string(data.c_str()).find("\r\n\r\n");
        if (blankLine != std::string::npos && blankLine > 0) data = data.substr(blankLine + 4);
        return kToPage + data + kToPageEnd;
    }

    std::string data;
    int level;

  private:
    static std::string drop() { return std::string(kToPage) + "ssldrop" + kToPageEnd; }

    Kind m_kind;
};

bool start(Embedding& page, Kind kind) {
    machine().processLives = kind == Kind::foundRunning;
    machine().pidFile = "42";
    machine().processId = 42;
    const char* const parameter = kind == Kind::probe ? "_probevpn" : "last_param";
    return page.create({{parameter, ""}}) == 0;
}

Delivery anyDelivery(FuzzInput& input) {
    Delivery how;
    how.noticeReason = static_cast<NPReason>(input.below(3));
    how.withStream = input.below(4) != 3;
    how.chunk = static_cast<int32>(input.below(64));
    return how;
}

void changeMachine(FuzzInput& input) {
    const std::size_t change = input.below(16);
    machine().pidFile = (change & 1) != 0 ? std::optional<std::string>() : "42";
    machine().processLives = (change & 2) == 0;
    machine().answer.reset();
    if ((change & 12) == 12) machine().answer = input.text();
}

// One completed request. Returns whether the conversation goes on.
bool step(FuzzPlugin& host, Embedding& page, Model& model, FuzzInput& input) {
    const BrowserRequest request = host.browser.lastRequest();
    const Delivery how = anyDelivery(input);
    changeMachine(input);
    const std::string answer = input.text();
    if (how.withStream) model.data = answer;
    model.level = host.log.level();
    const bool isPage = *static_cast<const int*>(request.notifyData) == 2;
    const std::string expected = isPage ? model.afterPage(request.url)
                                        : model.afterService(how.noticeReason == NPRES_NETWORK_ERR);

    const std::size_t before = host.browser.requests.size();
    page.deliver(request, answer, how);
    EXPECT_EQ(host.log.level(), model.level);
    EXPECT_EQ(textOf(*page.record().data), model.data);
    if (expected.empty()) {
        EXPECT_EQ(host.browser.requests.size(), before);
        return false;
    }
    EXPECT_EQ(host.browser.requests.size(), before + 1);
    EXPECT_EQ(host.lastUrl(), expected.c_str());
    return host.browser.lastRequest().wantsNotice;
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const auto kind = static_cast<Kind>(input.below(3));
    FuzzPlugin host;
    Embedding page(host.plugin);
    ASSERT_TRUE(start(page, kind));
    Model model(kind);
    for (int i = 0; i < 20 && !testing::Test::HasFailure(); ++i) {
        if (!step(host, page, model, input)) break;
    }
    machine().signals.clear();
    page.destroy();
    EXPECT_EQ(machine().signals.size(), kind == Kind::launched && machine().pidFile ? 1U : 0U);
}
