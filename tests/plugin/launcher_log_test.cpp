#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "launcher_fixture.h"
#include "log_file.h"

// Launches while other threads of the browser use the log: the copy of the process that the
// launcher makes writes to it as well when the program is missing.

namespace {

class LauncherLog : public Launcher {
  protected:
    LauncherLog() {
        std::filesystem::create_directories(home() + "/Library/Zerva");
        std::ofstream(home() + "/Library/Zerva/zerva.conf")
            << "default_log_level=31\nlog_file_size=20000\n";
        useOwnLog();
        module->errorLog()->setParam("module_name", "nevo_plugin");
        EXPECT_EQ(module->errorLog()->Open(path().c_str(), "a"), 0);
    }
    ~LauncherLog() override {
        module->errorLog()->Close();
        std::filesystem::remove_all(home() + "/Library");
    }

    static std::string home() { return std::getenv("HOME"); }
    static std::string path() { return home() + "/Library/launcher.log"; }

    // The items of the file, each line of which must have a line's form.
    static std::vector<std::string> itemsOf(const std::string& path) {
        std::string text = bytesOf(path);
        EXPECT_EQ(text.rfind(fileHeader(), 0), 0U);
        text.erase(0, fileHeader().size());
        std::vector<std::string> items;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            const auto parsed = parseLogLine(line);
            EXPECT_TRUE(parsed.has_value()) << line;
            if (parsed) items.push_back(parsed->item);
        }
        return items;
    }
};

TEST_F(LauncherLog, CopiesOfTheProcessNeverWaitForItsOtherThreads) {
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            while (!done) module->errorLog()->WriteErrorStr("thread\n");
        });
    }
    threads.emplace_back([&] {
        while (!done) module->errorLog()->setParam("module_name", "nevo_plugin");
    });
    for (int i = 0; i < 100; ++i) EXPECT_EQ(start(), 0);
    done = true;
    for (std::thread& thread : threads) thread.join();
    for (const std::string& file : {path(), path() + ".bak"}) itemsOf(file);

    // In a file that is too small to rotate.
    module->errorLog()->Close();
    EXPECT_EQ(module->errorLog()->Open(path().c_str(), "w"), 0);
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(itemsOf(path()),
                testing::Contains("0,,,, [LaunchVPN] - something wrong if we are here!"));
}

}  // namespace
