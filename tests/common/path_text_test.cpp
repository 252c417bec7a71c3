#include "PathText.h"

#include <gtest/gtest.h>

#include <string>

#include "UException.h"
#include "record_log.h"
#include "text_of.h"

namespace {

struct Row {
    const char* path;
    const char* dir;
    const char* name;
};
class FullPath : public testing::TestWithParam<Row> {};

TEST_P(FullPath, IsSplitAtItsLastSeparator) {
    CString dir("old");
    CString name("old");
    EXPECT_TRUE(ParseFullPath(GetParam().path, dir, name));
    EXPECT_EQ(textOf(dir), GetParam().dir);
    EXPECT_EQ(textOf(name), GetParam().name);
    EXPECT_EQ(textOf(SGetFilePath(GetParam().path, nullptr)), GetParam().dir);
    EXPECT_EQ(textOf(SGetFileName(GetParam().path, nullptr)), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Rows, FullPath,
                         testing::Values(Row{"/a/b/c", "/a/b/", "c"}, Row{"/a", "/", "a"},
                                         Row{"a/b", "a/", "b"}, Row{"a", "", "a"}, Row{"", "", ""},
                                         Row{"/a/b/", "/a/b/", ""}, Row{"/", "/", ""},
                                         Row{"C:\\a\\b", "C:\\a/", "b"}, Row{"a/b\\c", "a/b/", "c"},
                                         Row{"a\\b/c", "a\\b/", "c"}, Row{"/a/.", "/a/.", ""},
                                         Row{"/a/..", "/a/..", ""}, Row{".", ".", ""},
                                         Row{"..", "..", ""}, Row{"...", "", "..."},
                                         Row{"/a/.b", "/a/", ".b"}, Row{"a//b", "a//", "b"}));

TEST(FullPath, OfNothingIsRefused) {
    CString dir("old");
    CString name("old");
    EXPECT_FALSE(ParseFullPath(nullptr, dir, name));
    EXPECT_EQ(textOf(dir), "old");
    EXPECT_EQ(textOf(name), "old");
    EXPECT_EQ(textOf(SGetFileName(nullptr, "default")), "default");
    EXPECT_EQ(textOf(SGetFilePath(nullptr, "default")), "default");
}

TEST(FullPath, MayBeStoredOver) {
    CString path("/a/b");
    CString name;
    EXPECT_TRUE(ParseFullPath(path, path, name));
    EXPECT_EQ(textOf(path), "/a/");
    EXPECT_EQ(textOf(name), "b");
}

TEST(FullPath, OfNothingIsRaisedUnderOneNameWithoutADefault) {
    for (const auto function : {SGetFileName, SGetFilePath}) {
        const RecordLog log;
        try {
            function(nullptr, nullptr);
            FAIL() << "nothing was raised";
        } catch (const UException& e) {
            EXPECT_STREQ(e.GetFunctionName(), "SGetFileName()");
            EXPECT_STREQ(e.GetErrorMessage(), "EXCEPTION - failed to parse filename, ");
        }
    }
}

TEST(TrailingSlash, IsEitherSeparator) {
    for (const char* path : {"/", "\\", "a/", "a\\"}) EXPECT_TRUE(hasTralingSlash(path)) << path;
    for (const char* path : {"", "a", "/a", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(hasTralingSlash(path));
    }
}

TEST(TrailingSlash, IsStrippedOnce) {
    EXPECT_EQ(textOf(stripTrailingSlash("a/")), "a");
    EXPECT_EQ(textOf(stripTrailingSlash("a\\")), "a");
    EXPECT_EQ(textOf(stripTrailingSlash("a//")), "a/");
    EXPECT_EQ(textOf(stripTrailingSlash("a")), "a");
    EXPECT_EQ(textOf(stripTrailingSlash("/")), "");
    EXPECT_EQ(textOf(stripTrailingSlash(nullptr)), "");
}

TEST(TrailingSlash, IsAddedUnlessThere) {
    EXPECT_EQ(textOf(addTrailingSlash("a")), "a/");
    EXPECT_EQ(textOf(addTrailingSlash("a/")), "a/");
    EXPECT_EQ(textOf(addTrailingSlash("a\\")), "a\\");
    EXPECT_EQ(textOf(addTrailingSlash("")), "/");
    EXPECT_EQ(textOf(addTrailingSlash(nullptr)), "/");
}

}  // namespace
