#include "plugin_log.h"

#include <new>

#include "bare_log.h"
#include "plugin_test.h"

// The plug-in's log front, called directly.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using LogFront = UninitializedPluginTest;

TEST_F(LogFront, WritesEveryLevelTheSameWay) {
    for (const int level : {-1, 0, 1, 2, 3, 4, 5, 64}) PluginWriteLog(level, "line\n");
    EXPECT_EQ(log.events(), std::vector<std::string>(8, "line\n"));
}

TEST_F(LogFront, FormatsByPrintfRules) {
    PluginWriteLog(0, "%d|%s|0x%x|100%%\n", -5, "a%sb", 255U);
    EXPECT_THAT(log.events(), ElementsAre("-5|a%sb|0xff|100%\n"));
}

TEST_F(LogFront, WritesLongTextsWhole) {
    const std::string text(1 << 20, 'x');
    PluginWriteLog(5, "[%s]\n", text.c_str());
    EXPECT_EQ(log.lines(), std::vector<std::string>{"[" + text + "]\n"});
}

TEST_F(LogFront, DoesNothingWithoutALogObject) {
    removeLog();
    PluginOpenLog();
    PluginWriteLog(0, "line\n");
    PluginCloseLog();
    EXPECT_THAT(log.events(), IsEmpty());
}

// A log object for which the memory never suffices.
class FailingLog final : public BareLog {
  public:
    int Close() override { throw std::bad_alloc(); }
    int WriteLogStr(const char* /*text*/) override { throw std::bad_alloc(); }
    int SetLogLevel(int /*level*/) override { return 0; }
};

TEST_F(LogFront, LosesWhatTheLogCannotTakeAndGoesOn) {
    FailingLog failing;
    module->errorLog() = &failing;
    start();
    Embedding page(plugin);
    EXPECT_EQ(page.create(), 0);
    EXPECT_EQ(page.destroy(), 0);
    EXPECT_FALSE(page.isAlive());
    module->shutdown();
    module->errorLog() = &log;
}

}  // namespace
