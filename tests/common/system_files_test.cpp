// Runs in the sandbox: the folder for temporary files is a fixed one.

#include "SystemFiles.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <set>
#include <string>

#include "UException.h"
#include "record_log.h"
#include "text_of.h"

namespace {

namespace fs = std::filesystem;

TEST(ModuleFile, IsTheRunningProgram) {
    const std::string program = fs::read_symlink("/proc/self/exe");
    EXPECT_EQ(textOf(SGetModuleFileName(nullptr)), program);
    EXPECT_EQ(textOf(SGetModulePath(nullptr)), fs::path(program).parent_path().string() + "/");
}

TEST(TempPath, IsFixed) {
    setenv("TMPDIR", "/somewhere/else", 1);
    EXPECT_EQ(textOf(SGetTempPath()), "/tmp");
}

TEST(TempFile, IsAFreshNameInTheTempPath) {
    std::set<std::string> names;
    for (int i = 0; i < 100; ++i) {
        const std::string name = textOf(SGetTempFileName("ignored", nullptr, 7));
        EXPECT_EQ(name.size(), std::string("/tmp/XXXXXXXX").size());
        EXPECT_EQ(name.rfind("/tmp/", 0), 0u);
        EXPECT_FALSE(fs::exists(name));
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 100u);
}

TEST(TempFile, LeavesNoFileOpen) {
    rlimit files{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    files.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    for (int i = 0; i < 100; ++i) EXPECT_NO_THROW(SGetTempFileName(nullptr, nullptr, 0));
}

TEST(TempFile, ThatCannotBeMadeIsRaised) {
    fs::permissions("/tmp", fs::perms{0500});
    const RecordLog log;
    try {
        SGetTempFileName(nullptr, nullptr, 0);
        ADD_FAILURE() << "nothing was raised";
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetErrorMessage(), "SGetTempPath() - error=13");
    }
    fs::permissions("/tmp", fs::perms{0777});
    EXPECT_EQ(log.items().size(), 1u);
}

}  // namespace
