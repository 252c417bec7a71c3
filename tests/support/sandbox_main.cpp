#include "sandbox_main.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr char kInsideMark[] = "ZERVA_INSIDE_SANDBOX";
constexpr int kCannotEnter = 97;

std::string ownPath() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path;
}

// Replaces this process by the same program, with the same arguments, inside the sandbox.
int enterSandbox(const std::vector<std::string>& arguments) {
    // The build folder is writable for the sake of what the compiler's own tools write there.
    std::vector<std::string> command = {ZERVA_SANDBOX_SCRIPT, "--bind", ZERVA_SANDBOX_WRITABLE};
    bool asUser = true;
    for (const std::string& argument : arguments) {
        if (argument == "--sandbox-user=root") asUser = false;
        if (argument == "--sandbox-as-pid-1") command.emplace_back("--as-pid-1");
        if (argument == "--sandbox-small-disk") {
            command.insert(command.end(),
                           {"--small-disk", kSmallDisk, std::to_string(kSmallDiskSize)});
        }
    }
    if (asUser) command.emplace_back("--user");
    command.emplace_back("--");
    for (const std::string& argument : arguments) {
        constexpr std::string_view through = "--sandbox-through=";
        if (argument.starts_with(through)) command.push_back(argument.substr(through.size()));
    }
    command.push_back(ownPath());
    command.insert(command.end(), arguments.begin() + 1, arguments.end());

    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    setenv(kInsideMark, "1", 1);
    execv(argv[0], argv.data());
    std::fprintf(stderr, "cannot run %s: %s\n", argv[0], std::strerror(errno));
    return kCannotEnter;
}

}  // namespace

bool sandboxUserIsRoot() { return geteuid() == 0; }

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    testing::InitGoogleMock(&argc, argv);
    if (std::getenv(kInsideMark) == nullptr && !testing::GTEST_FLAG(list_tests))
        return enterSandbox(arguments);
    return RUN_ALL_TESTS();
}
