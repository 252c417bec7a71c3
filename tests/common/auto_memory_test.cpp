#include "AutoMemory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "UException.h"
#include "random_seed.h"
#include "record_log.h"
#include "text_of.h"

namespace {

std::string bytesOf(const AutoMemory& memory) {
    return {reinterpret_cast<const char*>(memory.getPtr()), memory.getSize()};
}

AutoMemory memoryOf(const std::string& bytes) {
    return {reinterpret_cast<const unsigned char*>(bytes.data()),
            static_cast<unsigned int>(bytes.size())};
}

void expectEmpty(const AutoMemory& memory) {
    EXPECT_EQ(memory.getPtr(), nullptr);
    EXPECT_EQ(memory.getSize(), 0U);
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

// An operation gives the block that the memory has afterwards.
template <typename Operation>
void expectGives(Operation operation, const AutoMemory& memory) {
    const unsigned char* const given = operation();
    EXPECT_EQ(given, memory.getPtr());
}

// What the operation raises, beside the record that it leaves.
template <typename Operation>
std::string raisedBy(Operation operation) {
    const RecordLog log;
    try {
        operation();
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetFileName(), "/UClasses");
        EXPECT_STREQ(e.GetFunctionName(), "AutoMemory::malloc");
        EXPECT_EQ(log.items().size(), 1U);
        EXPECT_EQ(
            withoutLine(log.items().at(0)),
            std::string("1, /UClasses, LINE, AutoMemory::malloc, ") + e.GetErrorMessage() + "\n");
        return e.GetErrorMessage();
    }
    return "nothing";
}

class DerivedObject : public UObject {
  public:
    void Fail() {
        m_errorCode = 5;
        m_errorText = "text";
        m_errorSource = "source";
    }
    int Code() const { return m_errorCode; }
    const CString& Text() const { return m_errorText; }
    const CString& Source() const { return m_errorSource; }
};

TEST(UObject, StartsWithoutAnErrorAndReturnsToThat) {
    DerivedObject object;
    EXPECT_EQ(object.Code(), 0);
    EXPECT_EQ(textOf(object.Text()), "");
    object.Fail();
    object.resetError();
    EXPECT_EQ(object.Code(), 0);
    EXPECT_EQ(textOf(object.Text()), "");
    EXPECT_EQ(textOf(object.Source()), "source");
}

TEST(UObject, DestructorIsItsOneVirtualOperation) {
    // The table of virtual operations, the number, two texts.
    EXPECT_EQ(sizeof(UObject), 4 * sizeof(void*));
    EXPECT_TRUE(std::has_virtual_destructor_v<UObject>);
    EXPECT_EQ(sizeof(AutoMemory), sizeof(UObject) + 2 * sizeof(void*));
}

TEST(AutoMemory, DefaultHasNoBlock) { expectEmpty(AutoMemory()); }

TEST(AutoMemory, OfASizeHasZeroBytes) {
    EXPECT_EQ(bytesOf(AutoMemory(10)), zeros(10));
    expectEmpty(AutoMemory(0));
    expectEmpty(AutoMemory(-5));
}

TEST(AutoMemory, OfDataHasACopy) {
    const std::string bytes("a\0b", 3);
    EXPECT_EQ(bytesOf(memoryOf(bytes)), bytes);
    expectEmpty(AutoMemory(nullptr, 0));
    EXPECT_EQ(bytesOf(AutoMemory(nullptr, 4)), zeros(4));
}

TEST(AutoMemory, CopyHasABlockOfItsOwn) {
    const AutoMemory memory = memoryOf("abc");
    const AutoMemory copy(memory);
    EXPECT_EQ(bytesOf(copy), "abc");
    EXPECT_NE(copy.getPtr(), memory.getPtr());
    expectEmpty(AutoMemory(AutoMemory()));
}

TEST(AutoMemory, AssignmentCopies) {
    const AutoMemory memory = memoryOf("abc");
    AutoMemory target = memoryOf("something else");
    target = memory;
    EXPECT_EQ(bytesOf(target), "abc");
    EXPECT_NE(target.getPtr(), memory.getPtr());
}

TEST(AutoMemory, AssignmentOfItselfChangesNothing) {
    AutoMemory memory = memoryOf("abc");
    const unsigned char* const block = memory;
    const AutoMemory& self = memory;
    memory = self;
    EXPECT_EQ(memory.getPtr(), block);
    EXPECT_EQ(bytesOf(memory), "abc");
}

TEST(AutoMemory, AssignmentOfNoBlockEmpties) {
    AutoMemory memory = memoryOf("abc");
    memory = AutoMemory();
    expectEmpty(memory);
}

TEST(AutoMemory, ConvertsToItsPointer) {
    AutoMemory memory = memoryOf("abc");
    unsigned char* const bytes = memory;
    EXPECT_EQ(bytes, memory.getPtr());
    bytes[0] = 'x';
    EXPECT_EQ(bytesOf(memory), "xbc");
}

TEST(AutoMemory, MallocGivesAFreshBlockOfZeroBytes) {
    AutoMemory memory = memoryOf("abc");
    expectGives([&] { return memory.malloc(6); }, memory);
    EXPECT_EQ(bytesOf(memory), zeros(6));
    expectGives([&] { return memory.malloc(2); }, memory);
    EXPECT_EQ(bytesOf(memory), zeros(2));
}

TEST(AutoMemory, MallocOfNothingEmptiesAndGivesNull) {
    for (const int size : {0, -5, INT_MIN}) {
        AutoMemory memory = memoryOf("abc");
        EXPECT_EQ(memory.malloc(size), nullptr);
        expectEmpty(memory);
    }
}

TEST(AutoMemory, MallocExFillsWithZerosOnDemand) {
    AutoMemory memory;
    expectGives([&] { return memory.mallocEx(7, 0); }, memory);
    EXPECT_EQ(memory.getSize(), 7U);
    memory.mallocEx(7, AutoMemory::kZeroFilled | 4);
    EXPECT_EQ(bytesOf(memory), zeros(7));
}

TEST(AutoMemory, EnsureOfWhatIsThereChangesNothing) {
    AutoMemory memory = memoryOf("abc");
    unsigned char* const block = memory;
    for (const unsigned int size : {0U, 2U, 3U}) EXPECT_EQ(memory.ensure(size), block);
    EXPECT_EQ(bytesOf(memory), "abc");
    EXPECT_EQ(AutoMemory().ensure(0), nullptr);
}

TEST(AutoMemory, EnsureOfMoreDiscardsTheContents) {
    AutoMemory memory = memoryOf("abc");
    expectGives([&] { return memory.ensure(4); }, memory);
    EXPECT_EQ(bytesOf(memory), zeros(4));
}

TEST(AutoMemory, ExpandKeepsTheOldBytes) {
    AutoMemory memory = memoryOf("abcdef");
    expectGives([&] { return memory.expand(4); }, memory);
    EXPECT_EQ(memory.getSize(), 10U);
    EXPECT_EQ(bytesOf(memory).substr(0, 6), "abcdef");
}

TEST(AutoMemory, ExpandOfNoBlockGivesZeroBytes) {
    AutoMemory memory;
    expectGives([&] { return memory.expand(4); }, memory);
    EXPECT_EQ(bytesOf(memory), zeros(4));
    AutoMemory none;
    EXPECT_EQ(none.expand(0), nullptr);
    EXPECT_EQ(none.expand(-3), nullptr);
    expectEmpty(none);
}

TEST(AutoMemory, TruncateKeepsTheFirstBytes) {
    AutoMemory memory = memoryOf("abcdef");
    expectGives([&] { return memory.truncate(2); }, memory);
    EXPECT_EQ(bytesOf(memory), "ab");
    expectGives([&] { return memory.truncate(5); }, memory);
    EXPECT_EQ(bytesOf(memory), "ab");
    expectGives([&] { return memory.truncate(0); }, memory);
    expectEmpty(memory);
}

TEST(AutoMemory, ExpandByNothingChangesNothing) {
    AutoMemory memory = memoryOf("abcdef");
    unsigned char* const block = memory;
    EXPECT_EQ(memory.expand(0), block);
    EXPECT_EQ(memory.expand(-3), block);
    EXPECT_EQ(bytesOf(memory), "abcdef");
}

class SaveToFile : public testing::Test {
  protected:
    SaveToFile() {
        char folder[] = "/tmp/auto_memory_test.XXXXXX";
        EXPECT_NE(mkdtemp(folder), nullptr);
        m_folder = folder;
        m_path = m_folder + "/file";
    }
    ~SaveToFile() override {
        unlink(m_path.c_str());
        rmdir(m_folder.c_str());
    }

    bool Exists() const {
        struct stat status;
        return stat(m_path.c_str(), &status) == 0;
    }
    std::string Contents() const {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string m_folder;
    std::string m_path;
};

TEST_F(SaveToFile, WritesEveryByte) {
    const std::string bytes("a\0b\n", 4);
    EXPECT_EQ(memoryOf(bytes).SaveToFile(m_path.c_str()), 0);
    EXPECT_EQ(Contents(), bytes);
}

TEST_F(SaveToFile, CutsAnOldFileToNothingFirst) {
    std::ofstream(m_path) << "a long old text";
    EXPECT_EQ(memoryOf("new").SaveToFile(m_path.c_str()), 0);
    EXPECT_EQ(Contents(), "new");
}

TEST_F(SaveToFile, WithoutABlockTouchesNoFile) {
    EXPECT_EQ(AutoMemory().SaveToFile(m_path.c_str()), 0);
    EXPECT_FALSE(Exists());
    EXPECT_EQ(AutoMemory().SaveToFile(nullptr), 0);
}

TEST_F(SaveToFile, OfAFileThatCannotBeOpenedGivesMinusOne) {
    EXPECT_EQ(memoryOf("abc").SaveToFile(m_folder.c_str()), -1);
    EXPECT_EQ(memoryOf("abc").SaveToFile((m_folder + "/none/file").c_str()), -1);
    EXPECT_EQ(memoryOf("abc").SaveToFile(nullptr), -1);
}

TEST_F(SaveToFile, DoesNotLookAtTheResultOfTheWrite) {
    EXPECT_EQ(AutoMemory(100000).SaveToFile("/dev/full"), 0);
}

TEST(AutoMemorySize, BeyondASignedNumberIsASizeLikeAnyOther) {
    // Elsewhere these bytes are never touched; a sanitizer would.
    if (kSanitized) GTEST_SKIP() << "a block of 2 GiB takes memory here";
    AutoMemory memory = memoryOf("abc");
    constexpr unsigned int size = INT_MAX + 1U;
    expectGives([&] { return memory.ensure(size); }, memory);
    EXPECT_EQ(memory.getSize(), size);
    EXPECT_EQ(memory.getPtr()[size - 1], 0);
}

TEST(AutoMemorySize, BeyondItsFieldIsRefusedAndLeavesTheBlock) {
    // Elsewhere these bytes are never touched; a sanitizer would.
    if (kSanitized) GTEST_SKIP() << "a block of 4 GiB takes memory here";
    AutoMemory memory(INT_MAX);
    memory.expand(INT_MAX);
    const unsigned char* const block = memory;
    EXPECT_EQ(raisedBy([&memory] { memory.expand(2); }),
              "EXCEPTION - malloc error (size), 4294967296");
    EXPECT_EQ(memory.getPtr(), block);
    EXPECT_EQ(memory.getSize(), 4294967294U);
}

}  // namespace
