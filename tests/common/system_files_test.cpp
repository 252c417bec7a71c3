// Runs in the sandbox: the folder for temporary files is a fixed one.

#include "SystemFiles.h"

#include <gtest/gtest.h>
#include <mach-o/dyld.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "UException.h"
#include "record_log.h"
#include "text_of.h"

namespace {

namespace fs = std::filesystem;

// What the system says instead of the truth, unless the path is empty: the program's path, once it
// was asked for with room enough and as often as it refuses.
struct {
    std::string path;
    std::uint32_t sizeNeeded = 0;
    int refusals = 0;
} answer;

}  // namespace

// The linker sends every call of the program's path here.
extern "C" {
int __real__NSGetExecutablePath(char* path, std::uint32_t* size);
int __wrap__NSGetExecutablePath(char* path, std::uint32_t* size) {
    if (answer.path.empty()) return __real__NSGetExecutablePath(path, size);
    if (answer.refusals > 0) {
        --answer.refusals;
        if (answer.sizeNeeded != 0) *size = answer.sizeNeeded;
        errno = EIO;
        return -1;
    }
    std::memcpy(path, answer.path.c_str(), answer.path.size() + 1);
    return 0;
}
}

namespace {

TEST(ModuleFile, IsTheRunningProgram) {
    const std::string program = fs::read_symlink("/proc/self/exe");
    EXPECT_EQ(textOf(SGetModuleFileName(nullptr)), program);
    EXPECT_EQ(textOf(SGetModulePath(nullptr)), fs::path(program).parent_path().string() + "/");
}

TEST(ModuleFile, HasItsDotsResolved) {
    const std::pair<const char*, const char*> rows[] = {
        {"/a/./b", "/a/b"},           {"/a/../b", "/b"},
        {"/a/b/../../c/d", "/c/d"},   {"/../a", "/a"},
        {"/./a/.b/..c", "/a/.b/..c"}, {"/a//b", "/a/b"},
        {"/a/b/./../c/./d", "/a/c/d"}};
    for (const auto& [path, resolved] : rows) {
        answer = {.path = path};
        EXPECT_EQ(textOf(SGetModuleFileName(nullptr)), resolved);
    }
    EXPECT_EQ(textOf(SGetModulePath(nullptr)), "/a/c/");
}

TEST(ModuleFile, MayHaveALongPath) {
    std::string path;
    while (path.size() < 3000) path += "/folder";
    answer = {
        .path = path, .sizeNeeded = static_cast<std::uint32_t>(path.size() + 1), .refusals = 1};
    EXPECT_EQ(textOf(SGetModuleFileName(nullptr)), path);
}

void expectModuleFailure(const std::string& message) {
    for (const auto function : {SGetModuleFileName, SGetModulePath}) {
        const RecordLog log;
        const auto before = answer;
        try {
            function(nullptr);
            ADD_FAILURE() << "nothing was raised";
        } catch (const UException& e) {
            EXPECT_EQ(e.GetErrorCode(), -1);
            EXPECT_STREQ(e.GetFunctionName(), "SGetModuleFileName()");
            EXPECT_EQ(e.GetErrorMessage(), message);
        }
        EXPECT_EQ(log.items().size(), 1u);
        answer = before;
    }
}

TEST(ModuleFile, ThatIsNotKnownIsRaised) {
    answer = {.path = "/a", .refusals = 1};
    expectModuleFailure("EXCEPTION - GetModuleFileName() error , 5");
}

TEST(ModuleFile, ThatOutgrowsItsRoomIsRaised) {
    answer = {.path = "/a", .sizeNeeded = 3001, .refusals = 2};
    expectModuleFailure("EXCEPTION - path is too big (allocated memory), 3001");
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
