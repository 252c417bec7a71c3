#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "launcher.h"
#include "plugin_test.h"

// How a process's owner is looked up, with a process table of the test's own.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kRecordSize = 648;

struct Question {
    std::vector<int> name;
    bool hasBuffer;
    std::size_t size;
};

// What the system answers, and what it was asked.
struct ScriptedTable {
    std::vector<kinfo_proc> records;
    std::size_t announced = 0;  // the size told first, in bytes; 0: as large as the records
    std::size_t filled = 0;     // the size told with the records, in bytes; 0: as large as they are
    int failingCall = 0;        // counted from 1; 0 fails none
    int error = 0;
    std::vector<Question> questions;

    std::size_t bytes() const { return records.size() * kRecordSize; }
};

ScriptedTable* current = nullptr;

}  // namespace

int sysctl(int* name, u_int length, void* buffer, std::size_t* size, void*, std::size_t) {
    ScriptedTable& table = *current;
    table.questions.push_back({{name, name + length}, buffer != nullptr, *size});
    if (table.failingCall == static_cast<int>(table.questions.size())) {
        errno = table.error;
        return -1;
    }
    if (buffer == nullptr) {
        *size = table.announced != 0 ? table.announced : table.bytes();
        return 0;
    }
    std::memcpy(buffer, table.records.data(), std::min(*size, table.bytes()));
    *size = table.filled != 0 ? table.filled : table.bytes();
    return 0;
}

namespace {

class ProcessTable : public PluginTest {
  protected:
    ProcessTable() { current = &table; }
    ~ProcessTable() override { current = nullptr; }

    void add(int pid, const char* name) {
        kinfo_proc record = {};
        record.kp_proc.p_pid = pid;
        std::strncpy(record.kp_proc.p_comm, name, MAXCOMLEN);
        table.records.push_back(record);
    }

    ScriptedTable table;
};

TEST_F(ProcessTable, IsAskedForItsSizeWithFourNumbersAndReadWithThree) {
    add(0, "kernel_task");
    add(7, "nevo");
    EXPECT_TRUE(NevoOwnsPid(7));
    ASSERT_EQ(table.questions.size(), 2U);
    EXPECT_THAT(table.questions[0].name, ElementsAre(1, 14, 0, 0));
    EXPECT_FALSE(table.questions[0].hasBuffer);
    EXPECT_EQ(table.questions[0].size, 0U);
    EXPECT_THAT(table.questions[1].name, ElementsAre(1, 14, 0));
    EXPECT_TRUE(table.questions[1].hasBuffer);
    EXPECT_EQ(table.questions[1].size, 2 * kRecordSize);
    EXPECT_THAT(log.events(), IsEmpty());
}

TEST_F(ProcessTable, IsReadAfreshForEachQuestion) {
    add(7, "nevo");
    EXPECT_TRUE(NevoOwnsPid(7));
    table.records[0].kp_proc.p_pid = 8;
    EXPECT_FALSE(NevoOwnsPid(7));
    EXPECT_TRUE(NevoOwnsPid(8));
    EXPECT_EQ(table.questions.size(), 6U);
}

TEST_F(ProcessTable, IsLookedThroughToItsLastRecord) {
    for (int pid = 1; pid <= 1000; ++pid) add(pid, "other");
    add(1001, "nevo");
    EXPECT_TRUE(NevoOwnsPid(1001));
    EXPECT_FALSE(NevoOwnsPid(1000));
    EXPECT_FALSE(NevoOwnsPid(1002));
}

TEST_F(ProcessTable, IsLookedThroughToTheFirstRecordOfThePidOnly) {
    add(7, "other");
    add(7, "nevo");
    add(8, "nevo");
    add(8, "other");
    EXPECT_FALSE(NevoOwnsPid(7));
    EXPECT_TRUE(NevoOwnsPid(8));
}

TEST_F(ProcessTable, IsCountedInWholeRecords) {
    add(1, "other");
    add(7, "nevo");
    table.filled = 2 * kRecordSize - 1;
    EXPECT_FALSE(NevoOwnsPid(7));
    EXPECT_FALSE(NevoOwnsPid(0));
}

TEST_F(ProcessTable, MayHaveShrunkWhenItIsRead) {
    add(7, "nevo");
    table.announced = 10 * kRecordSize;
    EXPECT_TRUE(NevoOwnsPid(7));
    EXPECT_FALSE(NevoOwnsPid(0));
    EXPECT_FALSE(NevoOwnsPid(8));
}

TEST_F(ProcessTable, WithoutThePidIsNoErrorAndOwnsNothing) {
    add(1, "nevo");
    EXPECT_FALSE(NevoOwnsPid(7));
    EXPECT_FALSE(NevoOwnsPid(0));
    EXPECT_FALSE(NevoOwnsPid(-1));
    EXPECT_THAT(log.events(), IsEmpty());
}

class CommandName : public ProcessTable, public testing::WithParamInterface<const char*> {};

TEST_P(CommandName, OtherThanNevoOwnsNothing) {
    add(7, GetParam());
    EXPECT_FALSE(NevoOwnsPid(7));
}

INSTANTIATE_TEST_SUITE_P(Names, CommandName,
                         testing::Values("", "n", "nev", "nevo2", "nevo ", " nevo", "Nevo", "NEVO",
                                         "nevO", "xnevo", "nevo\n", "nevo_is_sixteen_"),
                         [](const auto& row) { return "Name" + std::to_string(row.index); });

class TableFailure : public ProcessTable, public testing::WithParamInterface<int> {};

TEST_P(TableFailure, IsLoggedAndNotTriedAgain) {
    add(7, "nevo");
    table.failingCall = GetParam();
    for (const int error : {ENOMEM, EPERM}) {
        log.clear();
        table.questions.clear();
        table.error = error;
        EXPECT_FALSE(NevoOwnsPid(7));
        EXPECT_EQ(table.questions.size(), static_cast<std::size_t>(GetParam()));
        EXPECT_THAT(log.events(), ElementsAre("[CheckNevoByPid] sysctl failed (" +
                                              std::string(std::strerror(error)) + ")\n"));
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, TableFailure, testing::Values(1, 2),
                         [](const auto& row) { return row.param == 1 ? "Size" : "Records"; });

}  // namespace
