#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <set>
#include <thread>

#include "child_process.h"
#include "launcher.h"
#include "plugin_test.h"
#include "service_files.h"

namespace {

std::set<int> openedDescriptors() {
    std::set<int> opened;
    for (int fd = 0; fd < 256; ++fd)
        if (fcntl(fd, F_GETFD) != -1) opened.insert(fd);
    return opened;
}

class LaunchPipe : public PluginTest {
  protected:
    LaunchPipe() { removeServiceFiles(); }
    ~LaunchPipe() override { removeServiceFiles(); }
};

// A program that another thread starts during a launch would otherwise hold the pipe open, and the
// service would wait for the end of its input.
TEST_F(LaunchPipe, IsNotInheritedByWhateverElseIsStarted) {
    installService("stop input exit=0");
    const ChildProcess bystander("bystander");  // there is always a child to wait for
    const std::set<int> before = openedDescriptors();
    std::vector<int> flags;
    // More than a pipe holds: the launcher writes until the program reads on.
    const std::string text(1 << 20, 'x');
    std::thread observer([&] {
        siginfo_t info = {};
        waitid(P_ALL, 0, &info, WSTOPPED | WNOWAIT);
        for (const int fd : openedDescriptors()) {
            const bool isPipe = (fcntl(fd, F_GETFL) & O_ACCMODE) == O_WRONLY;
            if (before.count(fd) == 0 && isPipe) flags.push_back(fcntl(fd, F_GETFD));
        }
        kill(info.si_pid, SIGCONT);
    });
    EXPECT_EQ(LaunchVPN(text.c_str(), 0), 0);
    observer.join();
    EXPECT_THAT(flags, testing::ElementsAre(FD_CLOEXEC));
    EXPECT_TRUE(serviceInput() == text);
}

}  // namespace
