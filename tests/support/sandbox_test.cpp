#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>

// What scripts/sandbox promises about the machine that it runs on.

TEST(Sandbox, ModesOfTheMachinesDevicesCannotBeChanged) {
    for (const char* node : {"full", "null", "random", "urandom", "zero"}) {
        // The mode they have anyway: harmless even where the promise is broken.
        EXPECT_EQ(-1, chmod((std::string("/dev/") + node).c_str(), 0666)) << node;
    }
}

TEST(Sandbox, DevicesWork) {
    std::ofstream full("/dev/full");
    full << "x" << std::flush;
    EXPECT_FALSE(full.good());
    char byte = 'x';
    EXPECT_TRUE(std::ifstream("/dev/zero").get(byte));
    EXPECT_EQ('\0', byte);
}

TEST(Sandbox, SystemFoldersAreReadOnly) {
    for (const char* folder : {"/etc", "/usr", "/var"}) {
        EXPECT_FALSE(std::ofstream(std::string(folder) + "/zerva-sandbox-test").is_open());
        EXPECT_EQ(-1, chmod(folder, 0755));
    }
}

TEST(Sandbox, LibraryAndHomeAreWritable) {
    for (const std::string& folder : {std::string("/Library"), std::string(std::getenv("HOME"))}) {
        EXPECT_TRUE(std::ofstream(folder + "/file").is_open()) << folder;
        EXPECT_EQ(0, unlink((folder + "/file").c_str()));
    }
}

TEST(Sandbox, LoopbackIsTheOnlyNetwork) {
    struct if_nameindex* const all = if_nameindex();
    ASSERT_NE(nullptr, all);
    EXPECT_STREQ("lo", all[0].if_name);
    EXPECT_EQ(0U, all[1].if_index);
    if_freenameindex(all);
}
