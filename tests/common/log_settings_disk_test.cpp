// Settings on a disk that is full: defaults, and no byte lost that was not to be overwritten.

#include <cstdlib>

#include "ULogSettings.h"
#include "sandbox_main.h"
#include "temporary_home.h"

namespace {

namespace fs = std::filesystem;

class FullDiskSettings : public TemporaryHome {
  protected:
    FullDiskSettings() {
        fs::create_directories(folder());
        setenv("HOME", kSmallDisk, 1);
    }
    ~FullDiskSettings() override {
        freeDisk();
        fs::remove_all(std::string(kSmallDisk) + "/Library");
    }

    static std::string folder() { return std::string(kSmallDisk) + "/Library/Zerva"; }
    static std::string path() { return folder() + "/zerva.conf"; }
    static std::string filler() { return std::string(kSmallDisk) + "/filler"; }

    static void write(const std::string& bytes) {
        std::ofstream(path(), std::ios::binary) << bytes;
    }
    static std::string read() {
        std::ifstream file(path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void fillDisk() {
        std::ofstream file(filler(), std::ios::binary);
        const std::string page(4096, 'x');
        while (file.write(page.data(), 4096).flush()) {
        }
    }
    static void freeDisk() { fs::remove(filler()); }
};

TEST_F(FullDiskSettings, AreDefaultsWhenTheFileCannotBeMade) {
    fillDisk();
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
    EXPECT_EQ(ULogSettings::getModuleLogLevel("nevo"), 63u);
    EXPECT_EQ(ULogSettings::getFileRotationSize(), 5242880u);
    EXPECT_EQ(read(), "");
    freeDisk();
    ULogSettings::setLogLevel(5, 0);
    EXPECT_EQ(ULogSettings::getLogLevel(), 5u) << "the empty file gets its line";
}

TEST_F(FullDiskSettings, AreOverwrittenInPlaceAllTheSame) {
    write("default_log_level=63\nrest\n");
    fillDisk();
    ULogSettings::setLogLevel(31, 0);
    EXPECT_EQ(read(), "default_log_level=31\nrest\n");
}

// The line does not fit behind a file that ends with its last page.
TEST_F(FullDiskSettings, KeepEveryByteThatStoodThere) {
    const std::string before(4096, 'x');
    write(before);
    fillDisk();
    ULogSettings::setLogLevel(31, 0);
    EXPECT_EQ(read(), before);
    EXPECT_EQ(ULogSettings::getLogLevel(), 63u);
}

}  // namespace
