// Lack of memory: nothing is raised, and the user's file is changed as a whole or not at all.

#include <cerrno>
#include <cstdio>
#include <iterator>

#include "ULogSettings.h"
#include "failing_memory.h"
#include "temporary_home.h"

namespace {

bool streamsFail = false;

}  // namespace

// The linker sends every call of NAME to __wrap_NAME, and __real_NAME to the C library.
extern "C" {

std::FILE* __real_fdopen(int descriptor, const char* mode);

std::FILE* __wrap_fdopen(int descriptor, const char* mode) {
    if (!streamsFail) return __real_fdopen(descriptor, mode);
    errno = ENOMEM;
    return nullptr;
}
}

namespace {

namespace fs = std::filesystem;

class LogSettingsWithoutMemory : public TemporaryHome {
  protected:
    ~LogSettingsWithoutMemory() override { streamsFail = false; }

    const std::string given = "default_log_level=15\nnevo_log_level=7\nlog_file_size=1000\n";
};

TEST_F(LogSettingsWithoutMemory, WhatIsAskedForHasItsDefault) {
    struct {
        unsigned int (*ask)();
        unsigned int value;
        unsigned int usual;
    } const rows[] = {
        {ULogSettings::getLogLevel, 15, 63},
        {[] { return ULogSettings::getModuleLogLevel("nevo"); }, 7, 63},
        {[] { return ULogSettings::getModuleLogLevel(nullptr); }, 15, 63},
        {ULogSettings::getFileRotationSize, 1000, 5242880},
    };
    writeSettings(given);
    for (const auto& row : rows) {
        unsigned int answer = 0;
        failingEach([&] { answer = row.ask(); },
                    [&](bool failed) {
                        EXPECT_EQ(answer, failed ? row.usual : row.value);
                        EXPECT_EQ(readSettings(), given);
                    });
    }
}

TEST_F(LogSettingsWithoutMemory, WhatIsSetIsNotWritten) {
    writeSettings(given);
    const std::string after = "default_log_level=31" + given.substr(20);
    failingEach([] { ULogSettings::setModuleLogLevel("nevo", 31); },
                [&](bool failed) { EXPECT_EQ(readSettings(), failed ? given : after); });
}

TEST_F(LogSettingsWithoutMemory, AMissingFileIsMadeWholeOrNotAtAll) {
    makeLibrary();
    int made = 0;
    failingEach([] { ULogSettings::setLogLevel(31, 0); },
                [&](bool failed) {
                    if (fs::exists(settingsFolder())) {
                        EXPECT_EQ(modeOf(settingsFolder()), 0750u);
                    }
                    if (fs::exists(settingsPath())) {
                        ++made;
                        EXPECT_EQ(ULogSettings::getLogLevel(), 31u);
                        EXPECT_EQ(modeOf(settingsPath()), 0600u);
                    } else {
                        EXPECT_TRUE(failed);
                    }
                    fs::remove_all(settingsFolder());
                });
    EXPECT_GT(made, 0);
}

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

TEST_F(LogSettingsWithoutMemory, WithoutAStreamAFileIsNotTakenForAMissingOne) {
    writeSettings(given);
    const std::ptrdiff_t before = openDescriptors();
    streamsFail = true;
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    ULogSettings::setLogLevel(31, 0);
    EXPECT_EQ(readSettings(), given);
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
