#include "AfxDebug.h"

#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct SystemLogItem {
    int priority;
    std::string format;
    std::string text;
};

std::vector<SystemLogItem>& systemLog() {
    static std::vector<SystemLogItem> items;
    return items;
}

__attribute__((format(printf, 2, 0))) void logItem(int priority, const char* format, va_list args) {
    std::string text(20000, '\0');
    text.resize(static_cast<std::size_t>(vsnprintf(text.data(), text.size(), format, args)));
    systemLog().push_back({priority, format, text});
}

}  // namespace

// The system log of this program, plain and as the fortified C library calls it.
extern "C" void syslog(int priority, const char* format, ...) {
    va_list args;
    va_start(args, format);
    logItem(priority, format, args);
    va_end(args);
}

extern "C" void __syslog_chk(int priority, int flag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
extern "C" void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
    va_list args;
    va_start(args, format);
    logItem(priority, format, args);
    va_end(args);
}

namespace {

class AfxDebug : public testing::Test {
  protected:
    AfxDebug() { systemLog().clear(); }
    ~AfxDebug() override { g_dwDebugFlags = 2; }

    static std::string prefix() {
        char text[32];
        snprintf(text, sizeof text, "[%4d] ", static_cast<int>(getpid()));
        return text;
    }
};

TEST_F(AfxDebug, FlagsStartAsSystemLogOnly) { EXPECT_EQ(g_dwDebugFlags, 2U); }

TEST_F(AfxDebug, StringsAndAddressesAreValidUnlessNull) {
    EXPECT_TRUE(AfxIsValidString("x"));
    EXPECT_TRUE(AfxIsValidString("", 1000));
    EXPECT_FALSE(AfxIsValidString(nullptr, 0));
    EXPECT_TRUE(AfxIsValidAddress("x", 1U << 30, false));
    EXPECT_FALSE(AfxIsValidAddress(nullptr, 0));
}

TEST_F(AfxDebug, FailedAssertionGoesToTheSystemLogAndAsksToBreakByTheFlags) {
    const struct {
        unsigned int flags;
        std::size_t items;
        unsigned int result;
    } rows[] = {{0, 0, 0}, {1, 0, 1}, {2, 1, 0}, {3, 1, 1}, {4, 0, 0}};
    for (const auto& row : rows) {
        systemLog().clear();
        g_dwDebugFlags = row.flags;
        EXPECT_EQ(AfxAssertFailed("a == b", "file.cpp", 12, "f()"), row.result);
        ASSERT_EQ(systemLog().size(), row.items);
        if (row.items == 0) continue;
        EXPECT_EQ(systemLog()[0].priority, LOG_INFO);
        EXPECT_EQ(systemLog()[0].text,
                  "file.cpp:12: f()\nAssertion 'a == b' failed, continuing...\n");
    }
}

TEST_F(AfxDebug, TraceGoesWhereTheFlagsSay) {
    const std::string expected = prefix() + "x=5\n";
    for (const unsigned int flags : {0U, 1U, 2U, 3U}) {
        systemLog().clear();
        g_dwDebugFlags = flags;
        testing::internal::CaptureStdout();
        EXPECT_EQ(AfxTrace("x=%d\n", 5), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), (flags & 1) != 0 ? expected : "");
        ASSERT_EQ(systemLog().size(), (flags & 2) != 0 ? 1U : 0U);
        if ((flags & 2) == 0) continue;
        EXPECT_EQ(systemLog()[0].priority, LOG_DEBUG);
        EXPECT_EQ(systemLog()[0].format, "%s");
        EXPECT_EQ(systemLog()[0].text, expected);
    }
}

TEST_F(AfxDebug, TraceIsCutAtItsBuffer) {
    AfxTrace("%s", std::string(20000, 'x').c_str());
    ASSERT_EQ(systemLog().size(), 1U);
    EXPECT_EQ(systemLog()[0].text, prefix() + std::string(10238 - prefix().size(), 'x'));
}

TEST_F(AfxDebug, TraceThatCannotBeFormattedIsSentAsFarAsItGoes) {
    EXPECT_EQ(AfxTrace("%ls", L"\x20AC"), 0);
    ASSERT_EQ(systemLog().size(), 1U);
    EXPECT_EQ(systemLog()[0].text, prefix());
}

TEST_F(AfxDebug, TraceOfANullFormatIsItsPrefix) {
    const char* const none = nullptr;
    AfxTrace(none);
    ASSERT_EQ(systemLog().size(), 1U);
    EXPECT_EQ(systemLog()[0].text, prefix());
}

TEST_F(AfxDebug, TraceTakesPercentSignsOfTheMessageAsText) {
    AfxTrace("%s", "%s%n");
    ASSERT_EQ(systemLog().size(), 1U);
    EXPECT_EQ(systemLog()[0].text, prefix() + "%s%n");
}

}  // namespace
