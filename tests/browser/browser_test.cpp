#include "browser_test.h"

#include <QApplication>
#include <memory>

namespace {

// Made inside the sandbox, and gone before static destruction: the engine needs it to the end.
class Application : public testing::Environment {
  public:
    void SetUp() override {
        application_ = std::make_unique<QApplication>(argc_, argv_);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application_.reset(); }

  private:
    int argc_ = 1;
    char name_[14] = "browser_tests";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] const auto* const application =
    testing::AddGlobalTestEnvironment(std::make_unique<Application>().release());

}  // namespace

BrowserTest::BrowserTest()
    : stage({.live = true, .window = false, .picture = {}}), talk(stage.conversation()) {}

std::string casePage(const std::string& reply, const std::string& attributes) {
    return R"html(<!DOCTYPE html><body><script>
var rounds = 0;
function reply(text, round) { )html" +
           reply + R"html( }
function c_addcomm(text) {
  stage.heard("c_addcomm('" + text + "')");
  var value;
  try {
    value = reply(text, rounds++);
  } catch (error) {
    stage.replied('(throws)');
    throw error;
  }
  stage.replied(typeof value === 'string' ? value : '(' + typeof value + ')');
  return value;
}
function VPNNotInstalled() { stage.heard('VPNNotInstalled()'); }
</script><embed type="application/x-zerva-sslvpn" id="plug-in" width="1" height="1" )html" +
           attributes + "></body>";
}

std::string digits(std::size_t length) {
    std::string text(length, '0');
    for (std::size_t at = 0; at < length; ++at) {
        text[at] = static_cast<char>('0' + at % 10);
    }
    return text;
}

std::string pageHears(const std::string& text) {
    return "plug-in -> page: " + gist("c_addcomm('" + text + "')");
}

void expectLaunch(Conversation& talk) {
    talk.expect({"user -> page: opens it", "plug-in -> service: launch *browser_pid=*&",
                 "service -> plug-in: exit status 0", "plug-in -> service: ?CONNECT"});
}
