// What stands in the file after each writer.

#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdarg>
#include <thread>

#include "file_log_home.h"

namespace {

using testing::EndsWith;

class FileLogWrite : public FileLogTest {
  protected:
    FileLogWrite() { open(); }

    // What `write` adds to the file.
    template <typename Write>
    std::string added(Write write) {
        const std::size_t before = bytesOf(path()).size();
        write();
        return bytesOf(path()).substr(before);
    }

    // The same without the header of its first line.
    template <typename Write>
    std::string addedItem(Write write) {
        const auto line = parseLogLine(added(write));
        EXPECT_TRUE(line.has_value());
        return line ? line->item : "";
    }
};

long systemThreadId() {
    uint64_t thread = 0;
    pthread_threadid_np(pthread_t{}, &thread);
    return static_cast<int>(thread);
}

TEST_F(FileLogWrite, LineNamesProcessThreadAndModule) {
    log.WriteErrorStr("text\n");
    const LogLine line = lines().back();
    EXPECT_EQ(line.processId, getpid());
    EXPECT_EQ(line.threadId, systemThreadId());
    EXPECT_EQ(line.module, "nevo");
    EXPECT_EQ(line.item, "0,,,, text");
}

TEST_F(FileLogWrite, EachThreadIsNamedByItsOwnId) {
    long other = 0;
    std::thread([&] {
        other = systemThreadId();
        log.WriteErrorStr("text\n");
    }).join();
    EXPECT_EQ(lines().back().threadId, other);
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().threadId, systemThreadId());
}

TEST_F(FileLogWrite, ModuleNameStandsInTheNextLine) {
    log.setParam("module_name", "tessel_client");
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, "tessel_client");
    log.setParam("module_name", nullptr);
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, "");
    const std::string longName(3000, 'm');
    log.setParam("module_name", longName.c_str());
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, longName);
}

TEST_F(FileLogWrite, OtherParametersAreIgnored) {
    for (const char* name :
         {"Module_name", "module_name ", "module", "", static_cast<const char*>(nullptr)}) {
        log.setParam(name, "other");
    }
    log.WriteErrorStr("text\n");
    EXPECT_EQ(lines().back().module, "nevo");
}

TEST_F(FileLogWrite, ModuleNameIsEmptyAtFirst) {
    UFileErrorLog fresh;
    ASSERT_EQ(fresh.Open((home() + "/fresh.log").c_str(), "a"), 0);
    EXPECT_EQ(linesOf(home() + "/fresh.log").front().module, "");
}

TEST_F(FileLogWrite, ItemStandsAsGivenBehindTheHeader) {
    std::string everyByte;
    for (int i = 1; i < 256; ++i) everyByte += static_cast<char>(i);
    for (const std::string& text :
         {std::string("text\n"), std::string("no end"), std::string("%s %n 100%\n"),
          std::string("two\nlines\n"), std::string(), everyByte, std::string(1 << 20, 'x')}) {
        EXPECT_EQ(addedItem([&] {
                      EXPECT_EQ(log.WriteLogItem(text.c_str()), static_cast<int>(text.size()));
                  }),
                  text);
    }
}

// Short and long lines go to the system in different ways.
TEST_F(FileLogWrite, ItemOfAnyLengthIsWhole) {
    for (std::size_t length = 1900; length <= 2100; ++length) {
        const std::string text = std::string(length - 1, 'x') + 'y';
        EXPECT_EQ(addedItem([&] { log.WriteLogItem(text.c_str()); }), text);
    }
}

TEST_F(FileLogWrite, ModuleNameOfAnyLengthIsWhole) {
    for (std::size_t length = 0; length <= 100; ++length) {
        const std::string name(length, 'm');
        log.setParam("module_name", name.c_str());
        log.WriteErrorStr("text\n");
        EXPECT_EQ(lines().back().module, name);
        EXPECT_EQ(lines().back().item, "0,,,, text");
    }
}

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

// The same as making the text first and writing it with WriteLogStr.
class FileLogFormat : public FileLogWrite {
  protected:
    // Unknown to the compiler as a format: it warns of what is tested here.
    int writeFormat(const char* format, ...) {
        va_list args;
        va_start(args, format);
        const int result = log.WriteLogFormat(format, args);
        va_end(args);
        return result;
    }

    void expectSameAsText(const char* format, ...) {
        va_list args;
        va_list again;
        va_start(args, format);
        va_copy(again, args);
        CString text;
        text.FormatV(format, args);
        const std::string expected = addedItem([&] { log.WriteLogStr(text); });
        EXPECT_EQ(addedItem([&] { EXPECT_EQ(log.WriteLogFormat(format, again), 0); }), expected);
        va_end(again);
        va_end(args);
    }
};

TEST_F(FileLogFormat, WritesThePiecesOfAPlainFormat) {
    EXPECT_EQ(addedItem([&] {
                  EXPECT_EQ(writeFormat("[%s] %d|%u|0x%x|%c|100%%\n", "f", -5, 7U, 255U, 'c'), 0);
              }),
              "0,,,, [f] -5|7|0xff|c|100%\n");
}

TEST_F(FileLogFormat, WritesWhatWriteLogStrWritesOfTheText) {
    const std::string big(1 << 20, 'x');
    expectSameAsText("no conversion\n");
    expectSameAsText("%s", "");
    expectSameAsText("[%s]='%s'\n", big.c_str(), big.c_str());
    expectSameAsText("%d%d%d%d\n", INT_MIN, INT_MAX, 0, -1);
    expectSameAsText("%5d|%-5s|%.2s|%ld\n", 5, "ab", "abc", 7L);
    expectSameAsText("a%cb%s\n", '\0', "behind a NUL");
    expectSameAsText("%s%s%s%s%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "1", "2", "3", "4", "5", "6", "7", "8",
                     "9", "a", "b", "c", "d", "e", "f", "g", "h", "i");
}

TEST_F(FileLogFormat, NullTextAndNullFormatAreWrittenAsTexts) {
    const char* const null = nullptr;
    EXPECT_EQ(addedItem([&] { writeFormat("%s\n", null); }), "0,,,, (null)\n");
    EXPECT_EQ(addedItem([&] { writeFormat(null); }), "0,,,, ");
}

TEST_F(FileLogFormat, IsFilteredAsWriteLogStrIs) {
    log.SetLogLevel(-1);
    EXPECT_EQ(added([&] { EXPECT_EQ(writeFormat("%d\n", 5), 0); }), "");
    log.SetLogLevel(1);
    EXPECT_EQ(addedItem([&] { EXPECT_EQ(writeFormat("%d\n", 5), 0); }), "0,,,, 5\n");
}

TEST_F(FileLogFormat, IsRefusedByAClosedLog) {
    log.Close();
    EXPECT_EQ(added([&] {
                  EXPECT_EQ(writeFormat("%d\n", 5), -1);
                  EXPECT_EQ(writeFormat("%5d\n", 5), -1);
              }),
              "");
}

TEST_F(FileLogWrite, NullItemCountsAsEmpty) {
    EXPECT_EQ(addedItem([&] { EXPECT_EQ(log.WriteLogItem(nullptr), 0); }), "");
}

TEST_F(FileLogWrite, WritersReturnTheLengthWithThePriorityColumn) {
    EXPECT_EQ(log.WriteErrorStr("abc"), 9);
    EXPECT_EQ(log.WriteLogStr("abc"), 9);
    EXPECT_EQ(log.WriteLogStr(63, "abc"), 10);
    EXPECT_EQ(log.WriteLog("%d", 123), 9);
    EXPECT_EQ(log.WriteLog(12, "%d", 123), 10);
}

TEST_F(FileLogWrite, HexLinesHaveHeadersOfTheirOwn) {
    unsigned char data[33] = {0x0A, 0xFF};
    log.WriteAsHex(5, data, 33);
    const std::vector<std::string> all = items();
    EXPECT_THAT(all.at(all.size() - 2), testing::StartsWith("5,,,,   A FF  0"));
    EXPECT_EQ(all.back(), "5,,,,   0");
}

TEST_F(FileLogWrite, BytesStandRawWithAnEmptyLineBehind) {
    unsigned char data[] = {'a', 0, '%', 0xFF};
    EXPECT_EQ(added([&] { EXPECT_EQ(log.WriteLogByte(data, 4), 4); }),
              std::string("a\0%\xFF\n\n", 6));
    EXPECT_EQ(added([&] { EXPECT_EQ(log.WriteLogByte(data, 0), 0); }), "\n\n");
    EXPECT_EQ(added([&] { EXPECT_EQ(log.WriteLogByte(nullptr, 0), 0); }), "\n\n");
}

TEST_F(FileLogWrite, BytesWithATextHaveHeaderAndPriority4) {
    unsigned char data[] = {'a', 0, '%', 0xFF};
    const auto bytes = [&](const char* text, unsigned int length) {
        return addedItem(
            [&] { EXPECT_EQ(log.WriteLogByte(text, data, length), static_cast<int>(length)); });
    };
    EXPECT_EQ(bytes("text: ", 4), std::string("4,,,, text: a\0%\xFF\n", 17));
    EXPECT_EQ(bytes("text: ", 0), "4,,,, text: \n");
    EXPECT_EQ(bytes("", 1), "4,,,, a\n");
    EXPECT_EQ(bytes(nullptr, 1), "4,,,, a\n");
}

TEST_F(FileLogWrite, BytesAreWrittenAtAnyLevel) {
    unsigned char data[] = {'a'};
    log.SetLogLevel(-5);
    EXPECT_EQ(added([&] { log.WriteLogByte(data, 1); }), "a\n\n");
    EXPECT_EQ(addedItem([&] { log.WriteLogByte("t", data, 1); }), "4,,,, ta\n");
}

TEST_F(FileLogWrite, MissingBytesAreRefused) {
    EXPECT_EQ(added([&] {
                  EXPECT_EQ(log.WriteLogByte(nullptr, 1), -1);
                  EXPECT_EQ(log.WriteLogByte("text", nullptr, 1), -1);
              }),
              "");
}

TEST_F(FileLogWrite, LargeBlockOfBytesIsWhole) {
    constexpr unsigned int kLength = 3 << 20;
    std::vector<unsigned char> data(kLength, 'x');
    EXPECT_EQ(addedItem([&] {
                  EXPECT_EQ(log.WriteLogByte("t", data.data(), kLength), static_cast<int>(kLength));
              }).size(),
              std::string("4,,,, t\n").size() + kLength);
}

// A child that is killed right after its write has lost nothing.
TEST_F(FileLogWrite, EachWriteIsOnDiskWhenItReturns) {
    unsigned char data[] = {'b'};
    const std::string text = added([&] {
        const pid_t child = fork();
        if (child == 0) {
            log.WriteErrorStr("first\n");
            log.WriteLogByte("second ", data, 1);
            log.WriteLogByte(data, 1);
            raise(SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    });
    EXPECT_THAT(text, testing::HasSubstr("0,,,, first\n"));
    EXPECT_THAT(text, EndsWith("4,,,, second b\nb\n\n"));
}

TEST_F(FileLogWrite, TwoLogsOfOneFileAppendWholeLines) {
    UFileErrorLog other;
    other.setParam("module_name", "other");
    ASSERT_EQ(other.Open(path().c_str(), "w"), 0);
    log.WriteErrorStr("one\n");
    other.WriteErrorStr("two\n");
    log.WriteErrorStr("three\n");
    const std::vector<std::string> all = items();
    const std::vector<std::string> last(all.end() - 3, all.end());
    EXPECT_THAT(last, testing::ElementsAre("0,,,, one", "0,,,, two", "0,,,, three"));
}

}  // namespace
