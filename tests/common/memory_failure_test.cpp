// Lack of memory at every allocation of an operation on texts, messages, exceptions and byte
// buffers: the stated error, and nothing lost.

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <new>
#include <string>

#include "AutoMemory.h"
#include "ErrorLogLevels.h"
#include "LogRecord.h"
#include "StrFormat.h"
#include "UGuarded.h"
#include "UOutputErrorLog.h"
#include "URaise.h"
#include "failing_memory.h"
#include "record_log.h"
#include "text_of.h"

namespace {

struct TextOperation {
    const char* name;
    void (*run)(CString&);
    const char* result;
};

class CStringWithoutMemory : public testing::TestWithParam<TextOperation> {};

TEST_P(CStringWithoutMemory, RaisesBadAllocAndChangesNothing) {
    const CString source("text");
    CString shared(source);
    int raised = 0;
    failingEach(
        [&] {
            try {
                GetParam().run(shared);
            } catch (const std::bad_alloc&) {
                ++raised;
            }
        },
        [&](bool failed) {
            EXPECT_EQ(textOf(shared), failed ? "text" : GetParam().result);
            EXPECT_EQ(source.GetData()->refCount, failed ? 2 : 1);
        });
    EXPECT_GT(raised, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, CStringWithoutMemory,
    testing::Values(
        TextOperation{"SetAt", [](CString& s) { s.SetAt(0, 'T'); }, "Text"},
        TextOperation{"AssignText", [](CString& s) { s = "other text"; }, "other text"},
        TextOperation{"AssignCharacter", [](CString& s) { s = 'c'; }, "c"},
        TextOperation{"AppendText", [](CString& s) { s += "!"; }, "text!"},
        TextOperation{"AppendItself", [](CString& s) { s += s; }, "texttext"},
        TextOperation{"Add", [](CString& s) { s = s + "!"; }, "text!"},
        TextOperation{"Mid", [](CString& s) { s = s.Mid(1); }, "ext"},
        TextOperation{"MakeUpper", [](CString& s) { s.MakeUpper(); }, "TEXT"},
        TextOperation{"ReplaceText", [](CString& s) { s.Replace("t", "tt"); }, "ttextt"},
        TextOperation{"ReplaceByItself", [](CString& s) { s.Replace("ex", s); }, "ttextt"},
        TextOperation{"ReplaceCharacter", [](CString& s) { s.Replace('t', 'd'); }, "dexd"},
        TextOperation{"TrimRight", [](CString& s) { s.TrimRight(), s += ""; }, "text"},
        TextOperation{"Format", [](CString& s) { s.Format("%d", 5); }, "5"},
        TextOperation{"FormatByVsnprintf", [](CString& s) { s.Format("%3d", 5); }, "  5"},
        TextOperation{"GetBuffer", [](CString& s) { s.GetBuffer(100); }, "text"},
        TextOperation{"LockBuffer", [](CString& s) { s.LockBuffer(); }, "text"}),
    [](const auto& row) { return row.param.name; });

TEST(StrFormatWithoutMemory, ValueThatWasNotTakenCanBeGivenAgain) {
    std::string value(300, 'v');
    value += '%';
    for (const char* const source : {"<%1>", "<%1%1>", "<>"}) {
        StrFormat format(source);
        format.AppendIfNoPlaceholder(true);
        failingEach(
            [&] {
                try {
                    format.arg(value.c_str());
                } catch (const std::bad_alloc&) {
                }
            },
            [&](bool failed) {
                if (failed) {
                    EXPECT_STREQ(StrFormat(format), source);
                }
            });
        EXPECT_STREQ(format, sfmt(source, value.c_str()));
    }
}

TEST(UExceptionWithoutMemory, TextThatCannotBeStoredIsNullAndThatIsLogged) {
    const char* const records[] = {
        "1, , 0, , std::bad_alloc\n",
        "1, /x.cpp, 0, , (0x5) std::bad_alloc\n",
        "1, /x.cpp, 12, f, (0x5) std::bad_alloc\n",
    };
    for (int n = 1; n <= 3; ++n) {
        const RecordLog log;
        const FailingAllocation failing(n);
        const UException e(5, "/x.cpp", "f", 12, "message");
        ASSERT_TRUE(failing.happened());
        EXPECT_EQ(e.GetErrorCode(), 5);
        EXPECT_EQ(e.GetFileName() != nullptr, n > 1);
        EXPECT_EQ(e.GetFunctionName() != nullptr, n > 2);
        EXPECT_EQ(e.GetLine(), n > 2 ? 12U : 0U);
        EXPECT_FALSE(e.isDefined());
        ASSERT_EQ(log.items().size(), 1U);
        EXPECT_EQ(log.items()[0], records[n - 1]);
    }
}

TEST(UExceptionWithoutMemory, NothingRaises) {
    const UException source(5, "/x.cpp", "f", 12, "message");
    const RecordLog log;
    const std::function<void()> operations[] = {
        [] { const UException e(5, "/x.cpp", "f", 12, "%d", 7); },
        [&] { const UException copy(source); },
        [&] {
            UException target("old");
            target = source;
        },
        [] {
            UException e;
            e = "text";
            e = 7;
        },
        [] { writeLogRecord(1, SourcePlace::current(), "f", "text"); },
    };
    for (const auto& operation : operations) {
        failingEach([&] { EXPECT_NO_THROW(operation()); }, [](bool) {});
    }
}

TEST(UGuardedWithoutMemory, GivesTheFailureWhateverCannotBeLogged) {
    const RecordLog log;
    failingEach([] { EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw UException(); }), -1); },
                [](bool) {});
    failingEach(
        [] { EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw UException(7, "bad"); }), 7); },
        [](bool) {});
    failingEach(
        [] { EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { URaise("f", "failed", 5); }), -1); },
        [](bool) {});
    failingEach([] { EXPECT_EQ(UGuarded("work() - EXCEPTION", [] { throw 5; }), -1); },
                [](bool) {});
}

struct MemoryOperation {
    const char* name;
    void (*run)(AutoMemory&);
    const char* size;
    bool keepsTheBlock;
};

class AutoMemoryWithoutMemory : public testing::TestWithParam<MemoryOperation> {};

TEST_P(AutoMemoryWithoutMemory, RaisesTheSizeAskedFor) {
    const unsigned char bytes[] = {'a', 'b', 'c', 'd', 'e', 'f'};
    AutoMemory memory(bytes, sizeof bytes);
    const unsigned char* const block = memory;
    const RecordLog log;
    bool raised = false;
    {
        const FailingAllocation failing(1);
        try {
            GetParam().run(memory);
        } catch (const UException& e) {
            raised = true;
            EXPECT_EQ(e.GetErrorCode(), -1);
            EXPECT_STREQ(e.GetFileName(), "/UClasses");
            EXPECT_STREQ(e.GetFunctionName(), "AutoMemory::malloc");
            EXPECT_EQ(std::string(e.GetErrorMessage()),
                      std::string("EXCEPTION - malloc error (size), ") + GetParam().size);
        }
    }
    EXPECT_TRUE(raised);
    EXPECT_EQ(log.items().size(), 1U);
    EXPECT_EQ(memory.getPtr(), GetParam().keepsTheBlock ? block : nullptr);
    EXPECT_EQ(memory.getSize(), GetParam().keepsTheBlock ? 6U : 0U);
    if (memory.getSize() != 0) {
        EXPECT_EQ(memory.getPtr()[5], 'f');
    }
}

TEST_P(AutoMemoryWithoutMemory, RaisesTheSameKindWhenNothingIsLeftForItsTexts) {
    const unsigned char bytes[] = {'a', 'b', 'c', 'd', 'e', 'f'};
    AutoMemory memory(bytes, sizeof bytes);
    const RecordLog log;
    int code = 0;
    {
        const FailingAllocation failing(1, FailingAllocation::fromThenOn);
        try {
            GetParam().run(memory);
        } catch (const UException& e) {
            code = e.GetErrorCode();
        }
    }
    EXPECT_EQ(code, -1);
    EXPECT_EQ(memory.getSize(), GetParam().keepsTheBlock ? 6U : 0U);
    EXPECT_TRUE(log.items().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Operations, AutoMemoryWithoutMemory,
    testing::Values(
        MemoryOperation{"Malloc", [](AutoMemory& m) { m.malloc(10); }, "10", false},
        MemoryOperation{"MallocEx", [](AutoMemory& m) { m.mallocEx(10, 0); }, "10", false},
        MemoryOperation{"Ensure", [](AutoMemory& m) { m.ensure(10); }, "10", false},
        MemoryOperation{"Assign", [](AutoMemory& m) { m = AutoMemory(10); }, "10", true},
        MemoryOperation{"Expand", [](AutoMemory& m) { m.expand(4); }, "10", true},
        MemoryOperation{"Copy", [](AutoMemory& m) { const AutoMemory copy(m); }, "6", true},
        MemoryOperation{"OfASize", [](AutoMemory&) { const AutoMemory other(10); }, "10", true},
        MemoryOperation{"OfData", [](AutoMemory& m) { const AutoMemory other(m.getPtr(), 3); }, "3",
                        true}),
    [](const auto& row) { return row.param.name; });

TEST(AutoMemoryAssignment, WithoutMemoryLeavesTheTargetEmpty) {
    const AutoMemory source(10);
    AutoMemory target(6);
    const FailingAllocation failing(1);
    EXPECT_THROW(target = source, UException);
    EXPECT_EQ(target.getPtr(), nullptr);
    EXPECT_EQ(target.getSize(), 0U);
}

// Items that are longer than the room that needs no memory.
TEST(LogItems, WithoutMemoryAreLostAndTheWriterIsTold) {
    RecordLog log;
    const std::string text(3000, 'x');
    const auto withoutMemory = [&](auto write) {
        const FailingAllocation failing(1);
        const int result = write();
        EXPECT_TRUE(failing.happened());
        EXPECT_EQ(result, -1);
    };
    withoutMemory([&] { return log.WriteErrorStr(text.c_str()); });
    withoutMemory([&] { return log.WriteLogStr(text.c_str()); });
    withoutMemory([&] { return log.WriteLogStr(5, text.c_str()); });
    withoutMemory([&] { return log.WriteLog("%s", text.c_str()); });
    withoutMemory([&] {
        ERRORLOGLEVEL0("%s", text.c_str());
        return -1;
    });
    EXPECT_TRUE(log.items().empty());
}

TEST(LogItems, WithoutMemoryAreLostOnStandardOutputAndNobodyIsTold) {
    UOutputErrorLog log;
    int attempts = 0;
    testing::internal::CaptureStdout();
    failingEach([&] { EXPECT_EQ(log.WriteLogItem("text"), 0); }, [&](bool) { ++attempts; });
    std::fflush(stdout);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_GT(attempts, 1);
    EXPECT_EQ(output.find("text"), output.size() - sizeof "text\r\n") << output;
}

TEST(CreateStringWide, WithoutMemoryRaisesWhatItsBufferRaises) {
    const FailingAllocation failing(1);
    EXPECT_THROW(createString(L"text", -1, "dflt"), UException);
}

}  // namespace
