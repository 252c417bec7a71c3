#include "plugin_log.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "bare_log.h"
#include "plugin_test.h"

// The plug-in's log front, called directly.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Where a virtual function stands in its class's table.
template <typename Function>
std::uintptr_t slotOf(Function function) {
    std::array<std::uintptr_t, 2> words{};
    static_assert(sizeof words == sizeof function);
    std::memcpy(words.data(), &function, sizeof words);
    return (words[0] & ~std::uintptr_t{1}) / sizeof(void*);
}

TEST(LogInterface, HasItsOperationsInTheirSlots) {
    using Log = IUErrorLog;
    using Bytes = unsigned char*;
    const std::uintptr_t slots[] = {
        slotOf(&Log::Open),
        slotOf(&Log::Close),
        slotOf<int (Log::*)(const char*, ...)>(&Log::WriteLog),
        slotOf<int (Log::*)(int, const char*, ...)>(&Log::WriteLog),
        slotOf<int (Log::*)(const char*)>(&Log::WriteLogStr),
        slotOf<int (Log::*)(int, const char*)>(&Log::WriteLogStr),
        slotOf(&Log::WriteErrorStr),
        slotOf<int (Log::*)(Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf<int (Log::*)(const char*, Bytes, unsigned)>(&Log::WriteLogByte),
        slotOf(&Log::WriteAsHex),
        slotOf(&Log::WriteLogItem),
        slotOf(&Log::GetLogName),
        slotOf(&Log::GetLogLevel),
        slotOf(&Log::SetLogLevel),
        slotOf(&Log::setParam)};
    EXPECT_THAT(slots, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
}

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
