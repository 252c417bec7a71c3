// The process listing of BSD that other systems are given under its own name.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/sysctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "row_name.h"

namespace {

constexpr std::size_t kRecordSize = 648;

// A process under a name of its own that waits to be ended.
class NamedProcess {
  public:
    explicit NamedProcess(const char* name) {
        int ready[2];
        if (pipe(ready) != 0) throw std::runtime_error("no pipe");
        m_pid = fork();
        if (m_pid == 0) {
            prctl(PR_SET_NAME, name);
            close(ready[0]);
            close(ready[1]);
            for (;;) pause();
        }
        close(ready[1]);
        char byte = 0;
        while (read(ready[0], &byte, 1) > 0) {
        }
        close(ready[0]);
    }
    NamedProcess(const NamedProcess&) = delete;
    NamedProcess& operator=(const NamedProcess&) = delete;
    ~NamedProcess() {
        end();
        waitpid(m_pid, nullptr, 0);
    }

    pid_t pid() const { return m_pid; }

    // Ends it; it stays in the table until the object goes.
    void end() const {
        kill(m_pid, SIGKILL);
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT);
    }

  private:
    pid_t m_pid = -1;
};

// Lowers the number of descriptors that this process may have.
class DescriptorLimit {
  public:
    explicit DescriptorLimit(rlim_t limit) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit lowered = {limit, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &lowered);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

  private:
    rlimit m_before{};
};

class ProcessListing : public testing::Test {
  protected:
    int list(void* buffer, std::size_t* size, u_int numbers = 3) {
        return sysctl(name, numbers, buffer, size, nullptr, 0);
    }

    std::size_t neededSize() {
        std::size_t size = 0;
        EXPECT_EQ(list(nullptr, &size, 4), 0);
        return size;
    }

    std::vector<kinfo_proc> table(u_int numbers = 3) {
        std::size_t size = neededSize();
        std::vector<kinfo_proc> records(size / kRecordSize);
        EXPECT_EQ(list(records.data(), &size, numbers), 0);
        EXPECT_EQ(size % kRecordSize, 0U);
        records.resize(size / kRecordSize);
        return records;
    }

    std::optional<std::string> nameOf(pid_t pid) {
        for (const kinfo_proc& record : table())
            if (record.kp_proc.p_pid == pid) return record.kp_proc.p_comm;
        return std::nullopt;
    }

    int name[4] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
};

TEST_F(ProcessListing, HasTheNumbersOfBsd) {
    EXPECT_THAT(name, testing::ElementsAre(1, 14, 0, 0));
    EXPECT_EQ(sizeof(kinfo_proc), kRecordSize);
}

TEST_F(ProcessListing, BeginsWithTheKernel) {
    const std::vector<kinfo_proc> records = table();
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records[0].kp_proc.p_pid, 0);
    EXPECT_STREQ(records[0].kp_proc.p_comm, "kernel_task");
}

TEST_F(ProcessListing, NamesEveryProcessOnce) {
    const NamedProcess first("nevo");
    const NamedProcess second("other");
    EXPECT_EQ(nameOf(first.pid()), "nevo");
    EXPECT_EQ(nameOf(second.pid()), "other");
    EXPECT_NE(nameOf(getpid()), std::nullopt);
    std::vector<pid_t> pids;
    for (const kinfo_proc& record : table()) pids.push_back(record.kp_proc.p_pid);
    std::sort(pids.begin(), pids.end());
    EXPECT_EQ(std::adjacent_find(pids.begin(), pids.end()), pids.end());
}

TEST_F(ProcessListing, IsTheSameForThreeAndFourNumbers) {
    const auto pids = [this](u_int numbers) {
        std::vector<pid_t> found;
        for (const kinfo_proc& record : table(numbers)) found.push_back(record.kp_proc.p_pid);
        return found;
    };
    const NamedProcess child("nevo");
    EXPECT_THAT(pids(3), testing::Contains(child.pid()));
    EXPECT_THAT(pids(4), testing::Contains(child.pid()));
}

TEST_F(ProcessListing, HoldsAProcessThatWaitsToBeCollectedButNoneThatIsGone) {
    pid_t gone = 0;
    {
        const NamedProcess zombie("nevo");
        gone = zombie.pid();
        zombie.end();
        EXPECT_EQ(nameOf(zombie.pid()), "nevo");
    }
    EXPECT_EQ(nameOf(gone), std::nullopt);
}

struct Name {
    const char* rule;
    const char* given;
    const char* listed;
};
class ListedName : public ProcessListing, public testing::WithParamInterface<Name> {};

TEST_P(ListedName, IsTheShortNameToTheLastCharacter) {
    const NamedProcess process(GetParam().given);
    EXPECT_EQ(nameOf(process.pid()), GetParam().listed);
}

INSTANTIATE_TEST_SUITE_P(
    Names, ListedName,
    testing::Values(Name{"Plain", "nevo", "nevo"}, Name{"LineEndAtTheEnd", "nevo\n", "nevo\n"},
                    Name{"LineEndInside", "nevo\nx", "nevo\nx"}, Name{"Blanks", " nevo ", " nevo "},
                    Name{"LikeAStatusLine", "nevo) R 1", "nevo) R 1"}, Name{"Empty", "", ""},
                    Name{"Longest", "fifteen_letters", "fifteen_letters"},
                    Name{"CutByTheKernel", "sixteen_letters_", "sixteen_letters"}),
    nameOfRow);

// Sizes.

TEST_F(ProcessListing, TellsTheSizeWithRoomForAFewMore) {
    const std::size_t size = neededSize();
    EXPECT_EQ(size % kRecordSize, 0U);
    const NamedProcess first("one");
    const NamedProcess second("two");
    std::vector<kinfo_proc> records(size / kRecordSize);
    std::size_t filled = size;
    EXPECT_EQ(list(records.data(), &filled), 0);
    EXPECT_LE(filled, size);
}

TEST_F(ProcessListing, FailsInABufferThatIsTooSmall) {
    std::vector<kinfo_proc> records(2);
    for (const std::size_t room : {std::size_t{0}, kRecordSize - 1, 2 * kRecordSize - 1}) {
        std::size_t size = room;
        errno = 0;
        EXPECT_EQ(list(records.data(), &size), -1) << room;
        EXPECT_EQ(errno, ENOMEM) << room;
    }
}

// Refusals.

TEST_F(ProcessListing, IsTheOnlyThingSupplied) {
    std::size_t size = 0;
    for (const auto& [index, value] : {std::pair{0, 2}, {1, 15}, {2, 1}}) {
        int other[] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
        other[index] = value;
        EXPECT_EQ(sysctl(other, 4, nullptr, &size, nullptr, 0), -1);
        EXPECT_EQ(errno, ENOENT);
    }
    for (const u_int numbers : {0U, 2U, 5U}) {
        EXPECT_EQ(list(nullptr, &size, numbers), -1);
        EXPECT_EQ(errno, ENOENT);
    }
}

TEST_F(ProcessListing, CannotBeSet) {
    std::size_t size = 0;
    int value = 1;
    EXPECT_EQ(sysctl(name, 4, nullptr, &size, &value, sizeof value), -1);
    EXPECT_EQ(errno, EPERM);
}

TEST_F(ProcessListing, FailsRatherThanLeaveProcessesOutWhenDescriptorsRunOut) {
    std::vector<kinfo_proc> records(neededSize() / kRecordSize + 10);
    const int next = dup(STDIN_FILENO);  // the lowest number that is free
    ASSERT_GE(next, 0);
    close(next);
    // None for the folder, then one for the folder and none for a process.
    for (const int allowed : {0, 1}) {
        std::size_t size = records.size() * kRecordSize;
        const DescriptorLimit limit(static_cast<rlim_t>(next + allowed));
        errno = 0;
        EXPECT_EQ(list(records.data(), &size), -1) << allowed;
        EXPECT_EQ(errno, EMFILE) << allowed;
    }
}

TEST_F(ProcessListing, LeavesNoDescriptorOpen) {
    const int before = dup(STDIN_FILENO);
    close(before);
    table();
    std::size_t tooSmall = kRecordSize;
    kinfo_proc record;
    EXPECT_EQ(list(&record, &tooSmall), -1);
    const int after = dup(STDIN_FILENO);
    close(after);
    EXPECT_EQ(after, before);
}

}  // namespace
