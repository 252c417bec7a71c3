#include <malloc.h>
#include <unistd.h>

#include "child_process.h"
#include "plugin_test.h"
#include "service_files.h"

// Long lives: nothing grows.

namespace {

constexpr std::size_t kMostGrowth = 64 * 1024;

class Soak : public PluginTest {
  protected:
    Soak() {
        removeServiceFiles();
        removeLog();
    }

    // Runs `once` many times and expects the heap and the descriptors to be where they were.
    template <typename Once>
    void repeat(int times, Once once) {
        for (int i = 0; i < times / 10 + 1; ++i) once();
        const std::size_t heap = mallinfo2().uordblks;
        const int descriptors = openDescriptors();
        for (int i = 0; i < times; ++i) once();
        EXPECT_LE(mallinfo2().uordblks, heap + kMostGrowth);
        EXPECT_EQ(openDescriptors(), descriptors);
    }

    void forget() {
        browser.dropObjects();
        browser.calls.clear();
        browser.requests.clear();
    }
};

TEST_F(Soak, AHundredThousandStepsOfOneConversation) {
    Embedding page(plugin);
    installService("exit=0");
    ASSERT_EQ(page.create({{"last_param", ""}}), 0);
    writePidFile(std::to_string(getpid()));
    const std::string answer(1000, 'a');
    BrowserRequest request = browser.lastRequest();
    repeat(50000, [&] {
        page.deliver(request, answer);
        page.deliver(browser.lastRequest(), "command");
        request = browser.lastRequest();
        browser.calls.clear();
        browser.requests.clear();
    });
    removeServiceFiles();
}

TEST_F(Soak, TenThousandPagesThatProbe) {
    repeat(10000, [this] {
        Embedding page(plugin);
        ASSERT_EQ(page.create({{"_probevpn", ""}, {"a", "1"}, {"hostrooturl", "/"}}), 0);
        page.deliver(browser.lastRequest(), "state");
        page.deliver(browser.lastRequest(), "ignored");
        page.destroy();
        forget();
    });
}

TEST_F(Soak, DozensOfFailedLaunches) {
    installService("signal=9");
    repeat(50, [this] {
        Embedding page(plugin);
        ASSERT_EQ(page.create({{"last_param", ""}, {"a", "1"}}), 5);
        forget();
    });
}

TEST_F(Soak, ALongAnswerGivesItsMemoryBackWithItsInstance) {
    const std::string answer(8 << 20, 'x');
    repeat(5, [&] {
        Embedding page(plugin);
        ASSERT_EQ(page.create({{"_probevpn", ""}}), 0);
        page.deliver(browser.lastRequest(), answer);
        page.destroy();
        forget();
    });
}

}  // namespace
