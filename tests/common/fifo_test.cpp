#include <gmock/gmock.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

#include "failing_memory.h"
#include "fifo_double.h"
#include "on_threads.h"
#include "record_log.h"
#include "table_slot.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string raised(const std::string& operation, const std::string& what) {
    return "1, /FIFOBuffer.cpp, LINE, CFIFOBuffer::" + operation + ", EXCEPTION - " + what + "\n";
}

std::string caught(const std::string& text) {
    return "1, /FIFOBuffer.cpp, LINE, , EXCEPTION caught: " + text + "\n";
}

unsigned char* bytesOf(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

TEST(Stream, IsAnObjectThatIsValidAndHoldsNothingBack) {
    static_assert(std::is_base_of_v<UObject, CStream>);
    static_assert(std::is_abstract_v<CStream>);
    RecordStream stream;
    EXPECT_TRUE(stream.CStream::ValidateConnection());
    EXPECT_EQ(stream.CStream::flush(), 0);
}

// The destructor takes the first two.
TEST(Stream, OperationsStandInThePublishedTableOrder) {
    const std::uintptr_t slots[] = {slotOf(&CStream::receive), slotOf(&CStream::send),
                                    slotOf(&CStream::ValidateConnection), slotOf(&CStream::flush)};
    EXPECT_THAT(slots, ElementsAre(2, 3, 4, 5));
}

TEST(Fifo, IsAStreamAndBeginsEmptyInLockingMode) {
    static_assert(std::is_base_of_v<CStream, CFIFOBuffer>);
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.m_iMode, 0);
    EXPECT_EQ(fifo.m_iLockCount, 0);
    EXPECT_EQ(fifo.m_iSize, 11);
    EXPECT_EQ(fifo.m_memory.getSize(), 11U);
    EXPECT_EQ(fifo.m_pBuffer, fifo.m_memory.getPtr());
    EXPECT_EQ(fifo.getHead(), 0);
    EXPECT_EQ(fifo.getTail(), 0);
    EXPECT_EQ(fifo.getDataAvailable(), 0);
    EXPECT_EQ(fifo.getFreeSpace(), 10);
    EXPECT_TRUE(fifo.ValidateConnection());
    EXPECT_EQ(fifo.flush(), 0);
}

TEST(Fifo, HasRoomForSeventyThousandBytesUnlessTold) {
    CFIFOBuffer fifo;
    EXPECT_EQ(fifo.getFreeSpace(), 70000);
}

TEST(Fifo, InitForgetsTheContentAndTakesANewCapacity) {
    OpenFifo fifo(10);
    fifo.pushText("abc");
    fifo.skip(1);
    fifo.Init(5);
    EXPECT_EQ(fifo.getHead(), 0);
    EXPECT_EQ(fifo.getTail(), 0);
    EXPECT_EQ(fifo.getFreeSpace(), 5);
    EXPECT_EQ(fifo.m_pBuffer, fifo.m_memory.getPtr());
}

TEST(Fifo, TakesExactlyItsCapacity) {
    const RecordLog log;
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.pushText("0123456789"), 10);
    EXPECT_EQ(fifo.getFreeSpace(), 0);
    EXPECT_EQ(fifo.pushText("x"), -1);
    EXPECT_EQ(fifo.content(), "0123456789");
    EXPECT_THAT(recordsOf(log),
                ElementsAre(raised("push", "free space < length (free space, length), 0, 1"),
                            caught("CFIFOBuffer::push - exception")));
}

TEST(Fifo, ACapacityOfZeroTakesNothing) {
    OpenFifo fifo(0);
    EXPECT_EQ(fifo.getFreeSpace(), 0);
    EXPECT_EQ(fifo.pushText(""), 0);
    EXPECT_EQ(fifo.pushText("x"), -1);
    EXPECT_EQ(fifo.popText(0), "");
}

TEST(Fifo, PushWrapsRoundTheEndAndPopReturnsBothPieces) {
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.pushText("abcdef"), 6);
    EXPECT_EQ(fifo.popText(6), "abcdef");
    EXPECT_EQ(fifo.pushText("12345678"), 8);
    EXPECT_EQ(fifo.getTail(), 6);
    EXPECT_EQ(fifo.getHead(), 3);
    EXPECT_EQ(fifo.getDataAvailable(), 8);
    EXPECT_EQ(std::memcmp(fifo.m_pBuffer + 6, "12345", 5), 0);
    EXPECT_EQ(std::memcmp(fifo.m_pBuffer, "678", 3), 0);
    EXPECT_EQ(fifo.popText(8), "12345678");
}

TEST(Fifo, IndicesWrapWhenTheyReachTheEndExactly) {
    OpenFifo fifo(10);
    fifo.turnTo(6);
    fifo.pushText("12345");
    EXPECT_EQ(fifo.getHead(), 0);
    fifo.popText(5);
    EXPECT_EQ(fifo.getTail(), 0);
}

TEST(Fifo, ReadGivesTheLengthAndLeavesTheContent) {
    OpenFifo fifo(10);
    fifo.turnTo(8);
    fifo.pushText("abcde");
    for (int round = 0; round < 2; ++round) {
        std::string text(4, '?');
        EXPECT_EQ(fifo.read(bytesOf(text), 4), 4);
        EXPECT_EQ(text, "abcd");
        EXPECT_EQ(fifo.getDataAvailable(), 5);
        EXPECT_EQ(fifo.getTail(), 8);
    }
}

TEST(Fifo, SkipRemovesTheOldestAndGivesZero) {
    OpenFifo fifo(10);
    fifo.turnTo(8);
    fifo.pushText("abcde");
    EXPECT_EQ(fifo.skip(4), 0);
    EXPECT_EQ(fifo.content(), "e");
    EXPECT_EQ(fifo.getTail(), 1);
}

TEST(Fifo, ClearForgetsTheContentAndTurnsBackToTheStart) {
    OpenFifo fifo(10);
    fifo.turnTo(8);
    fifo.pushText("abc");
    EXPECT_EQ(fifo.clear(), 0);
    EXPECT_EQ(fifo.getHead(), 0);
    EXPECT_EQ(fifo.getTail(), 0);
    EXPECT_EQ(fifo.getFreeSpace(), 10);
}

TEST(Fifo, AskingForMoreThanIsStoredFailsWithItsOwnTextAndChangesNothing) {
    RecordLog log;
    OpenFifo fifo(10);
    fifo.turnTo(9);
    fifo.pushText("ab");
    std::string text(9, '?');
    EXPECT_EQ(fifo.read(bytesOf(text), 3), -1);
    EXPECT_EQ(fifo.pop(bytesOf(text), 4), -1);
    EXPECT_EQ(fifo.skip(5), -1);
    EXPECT_EQ(text, "?????????");
    EXPECT_EQ(fifo.content(), "ab");
    EXPECT_EQ(fifo.getTail(), 9);
    EXPECT_THAT(recordsOf(log),
                ElementsAre(raised("read", "available data < length (available , length), 2, 3"),
                            caught("CFIFOBuffer::read - exception"),
                            raised("pop", "available data < length (available, length), 2, 4"),
                            caught("CFIFOBuffer::pop - exception"),
                            raised("skip", "available data < length (available, length), 2, 5"),
                            caught("CFIFOBuffer::skip - exception")));
}

TEST(Fifo, LengthsBeyond32BitsAreRefusedAndPrintedInFull) {
    if constexpr (sizeof(long) == 8) {
        RecordLog log;
        OpenFifo fifo(10);
        fifo.pushText("ab");
        unsigned char byte = 0;
        constexpr long huge = 5000000000;
        EXPECT_EQ(fifo.push(&byte, huge), -1);
        EXPECT_EQ(fifo.pop(&byte, huge), -1);
        EXPECT_EQ(fifo.content(), "ab");
        EXPECT_EQ(recordsOf(log)[0],
                  raised("push", "free space < length (free space, length), 8, 5000000000"));
    }
}

TEST(Fifo, NegativeLengthsMoveNothing) {
    const RecordLog log;
    OpenFifo fifo(10);
    fifo.turnTo(5);
    fifo.pushText("abc");
    for (const int length : {-1, -5, INT_MIN}) {
        EXPECT_EQ(fifo.push(nullptr, length), 0);
        EXPECT_EQ(fifo.pop(nullptr, length), 0);
        EXPECT_EQ(fifo.read(nullptr, length), length);
        EXPECT_EQ(fifo.skip(length), 0);
    }
    EXPECT_EQ(fifo.push(nullptr, LONG_MIN), 0);
    EXPECT_EQ(fifo.pop(nullptr, LONG_MIN), 0);
    EXPECT_EQ(fifo.content(), "abc");
    EXPECT_EQ(fifo.getTail(), 5);
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST(Fifo, ALengthOfZeroNeedsNoPointer) {
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.push(nullptr, 0), 0);
    EXPECT_EQ(fifo.pop(nullptr, 0), 0);
    EXPECT_EQ(fifo.read(nullptr, 0), 0);
    EXPECT_EQ(fifo.skip(0), 0);
}

TEST(Fifo, ANullPointerForBytesIsAFailureAndChangesNothing) {
    const RecordLog log;
    OpenFifo fifo(10);
    fifo.pushText("abc");
    EXPECT_EQ(fifo.push(nullptr, 3), -1);
    EXPECT_EQ(fifo.pop(nullptr, 2), -1);
    EXPECT_EQ(fifo.read(nullptr, 1), -1);
    EXPECT_EQ(fifo.content(), "abc");
    EXPECT_EQ(recordsOf(log)[0], raised("push", "data is NULL (length), 3"));
    EXPECT_EQ(recordsOf(log)[1], caught("CFIFOBuffer::push - exception"));
}

TEST(Fifo, IsReceivedFromByPopAndSentToByPush) {
    OpenFifo fifo(10);
    CStream& stream = fifo;
    std::string text = "abc";
    EXPECT_EQ(stream.send(3, bytesOf(text)), 3);
    EXPECT_EQ(fifo.content(), "abc");
    std::string out(2, '?');
    EXPECT_EQ(stream.receive(2, bytesOf(out)), 2);
    EXPECT_EQ(out, "ab");
    EXPECT_EQ(stream.receive(2, bytesOf(out)), -1);
}

TEST(Fifo, TheWholeContentMovesIntoABlock) {
    OpenFifo fifo(10);
    fifo.turnTo(7);
    fifo.pushText("abcdefgh");
    AutoMemory out(99);
    EXPECT_EQ(fifo.popToAutoMemory(out), 0);
    ASSERT_EQ(out.getSize(), 8U);
    EXPECT_EQ(std::memcmp(out.getPtr(), "abcdefgh", 8), 0);
    EXPECT_EQ(fifo.getDataAvailable(), 0);
    EXPECT_EQ(fifo.popToAutoMemory(out), 0);
    EXPECT_EQ(out.getSize(), 0U);
}

TEST(Fifo, WithoutMemoryForTheBlockTheContentStays) {
    OpenFifo fifo(10);
    fifo.pushText("abc");
    AutoMemory out;
    RecordLog log;
    int result = 0;
    {
        const FailingAllocation failing(1);
        result = fifo.popToAutoMemory(out);
    }
    EXPECT_EQ(result, -1);
    EXPECT_EQ(fifo.content(), "abc");
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(withoutLine(log.items()[1]),
              caught("CFIFOBuffer::CFIFOBuffer::popToAutoMemory() - EXCEPTION"));
}

// Only a derived class gets here: it passes the ring's own block to be filled, whose new size
// changes what is available between the two steps of the operation.
TEST(Fifo, AContentThatDoesNotComeWholeIsAFailure) {
    OpenFifo fifo(10);
    fifo.turnTo(8);
    fifo.pushText("abcdef");
    RecordLog log;
    EXPECT_EQ(fifo.popToAutoMemory(fifo.m_memory), -1);
    EXPECT_THAT(recordsOf(log),
                ElementsAre("1, /FIFOBuffer.cpp, LINE, CFIFOBuffer::pop, EXCEPTION - available "
                            "data < length (available, length), 1, 6\n",
                            caught("CFIFOBuffer::pop - exception"),
                            "1, /FIFOBuffer.cpp, LINE, CFIFOBuffer::popToAutoMemory(), EXCEPTION - "
                            "pop() FAILED\n",
                            caught("CFIFOBuffer::CFIFOBuffer::popToAutoMemory() - EXCEPTION")));
    fifo.Init(10);
    EXPECT_EQ(fifo.pushText("abcdef"), 6);
}

// What a buffer without storage answers.
void expectNoStorage(OpenFifo& fifo) {
    EXPECT_EQ(fifo.m_pBuffer, nullptr);
    EXPECT_EQ(fifo.m_memory.getSize(), 0U);
    EXPECT_EQ(fifo.getFreeSpace(), -1);
    EXPECT_EQ(fifo.getDataAvailable(), 0);
    EXPECT_EQ(fifo.pushText("x"), -1);
    EXPECT_EQ(fifo.pushText(""), -1);
    EXPECT_EQ(fifo.popText(0), "");
    EXPECT_EQ(fifo.popText(1), "-1");
    EXPECT_EQ(fifo.skip(1), -1);
    EXPECT_EQ(fifo.clear(), 0);
    RecordStream stream;
    EXPECT_EQ(fifo.popToStream(&stream, 1), -1);
    EXPECT_THAT(stream.pieces, IsEmpty());
    EXPECT_EQ(fifo.popToStream(&stream, 0), -1);
    EXPECT_THAT(stream.pieces, ElementsAre(""));
    RecordStream taking({1});
    EXPECT_EQ(fifo.popToStream(&taking, 0), 1);
    EXPECT_THAT(taking.pieces, ElementsAre(""));
    AutoMemory out;
    EXPECT_EQ(fifo.popToAutoMemory(out), 0);
}

TEST(Fifo, WithoutMemoryItHasNoStorageAndSaysSoAtLevelTwo) {
    OpenFifo fifo(5);
    RecordLog log(2);
    {
        const FailingAllocation failing(1);
        fifo.Init(10);
    }
    ASSERT_EQ(log.items().size(), 2U);
    EXPECT_EQ(withoutLine(log.items()[1]),
              "2, /FIFOBuffer.cpp, LINE, CFIFOBuffer::Init, Failed to allocate memory (size: 10, "
              "error: 12)\n");
    expectNoStorage(fifo);
    fifo.Init(3);
    EXPECT_EQ(fifo.pushText("abc"), 3);
}

TEST(Fifo, WithoutMemoryForItsRecordEitherItRaisesNothing) {
    OpenFifo fifo(5);
    const RecordLog log(2);
    {
        const FailingAllocation failing(1, FailingAllocation::fromThenOn);
        fifo.Init(10);
    }
    EXPECT_THAT(log.items(), IsEmpty());
    expectNoStorage(fifo);
}

TEST(Fifo, RefusesTheSameWithoutMemoryToSayWhy) {
    OpenFifo fifo(2);
    fifo.pushText("a");
    unsigned char bytes[3] = {};
    AutoMemory out;
    const RecordLog log;
    std::array<long, 7> results{};
    {
        const FailingAllocation failing(1, FailingAllocation::fromThenOn);
        results = {fifo.push(bytes, 3),          fifo.pop(bytes, 3),
                   fifo.read(bytes, 3),          fifo.skip(3),
                   fifo.popToAutoMemory(out),    fifo.popToStream(nullptr, 1),
                   fifo.readToStream(nullptr, 1)};
    }
    EXPECT_THAT(results, testing::Each(-1));
    EXPECT_EQ(fifo.content(), "a");
    EXPECT_EQ(fifo.m_iLockCount, 0);
}

TEST(Fifo, CapacitiesThatNoBlockCanHaveGiveNoStorage) {
    for (const int capacity : {-1, -2, INT_MIN, INT_MAX}) {
        const RecordLog log(2);
        OpenFifo fifo(capacity);
        ASSERT_EQ(log.items().size(), 1U) << capacity;
        EXPECT_THAT(log.items()[0], testing::StartsWith("2, /FIFOBuffer.cpp, "));
        EXPECT_THAT(log.items()[0], testing::HasSubstr("(size: " + std::to_string(capacity) + ","));
        expectNoStorage(fifo);
    }
}

TEST(Fifo, MissingStorageIsNotMentionedBelowLevelTwo) {
    const RecordLog log(1);
    const OpenFifo fifo(-1);
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST(Fifo, FailsTheSameWithoutALog) {
    OpenFifo fifo(2);
    EXPECT_EQ(fifo.pushText("abc"), -1);
    EXPECT_EQ(fifo.skip(1), -1);
}

TEST(Fifo, SetModeGivesTheModeBefore) {
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.setMode(1), 0);
    EXPECT_EQ(fifo.setMode(-7), 1);
    EXPECT_EQ(fifo.setMode(0), -7);
}

TEST(Fifo, LockIsCountedAndGivenBackAsOften) {
    OpenFifo fifo(10);
    fifo.Lock();
    fifo.Lock();
    EXPECT_EQ(fifo.m_iLockCount, 2);
    EXPECT_EQ(fifo.Unlock(), 0);
    EXPECT_EQ(fifo.m_iLockCount, 1);
    EXPECT_EQ(fifo.Unlock(), 0);
    EXPECT_EQ(fifo.m_iLockCount, 0);
    EXPECT_EQ(onAnotherThread([&] { return fifo.pushText("a"); }), 1);
}

TEST(Fifo, AStrayUnlockDoesNothing) {
    const RecordLog log;
    OpenFifo fifo(10);
    EXPECT_EQ(fifo.Unlock(), 0);
    EXPECT_EQ(fifo.m_iLockCount, 0);
    fifo.Lock();
    EXPECT_EQ(onAnotherThread([&] { return fifo.Unlock(); }), 0);
    EXPECT_EQ(fifo.m_iLockCount, 1);
    fifo.Unlock();
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST(Fifo, EveryOperationGivesItsLockBackOnEveryPath) {
    OpenFifo fifo(4);
    AutoMemory out;
    RecordStream refusing({0, 0, 0});
    fifo.pushText("abcde");
    fifo.pushText("ab");
    fifo.popText(9);
    fifo.skip(9);
    fifo.popToStream(&refusing, 1);
    fifo.readToStream(&refusing, 1);
    fifo.popToStream(&refusing, 9);
    fifo.popToAutoMemory(out);
    fifo.getFreeSpace();
    fifo.clear();
    EXPECT_EQ(fifo.m_iLockCount, 0);
    EXPECT_EQ(onAnotherThread([&] { return fifo.pushText("a"); }), 1);
}

// A stream that says whether the buffer's lock is held while it is sent to.
class LockWatch : public RecordStream {
  public:
    explicit LockWatch(OpenFifo& fifo) : m_fifo(fifo) {}
    long send(long length, unsigned char* /*data*/) override {
        counts.push_back(m_fifo.m_iLockCount);
        return length;
    }
    std::vector<int> counts;

  private:
    OpenFifo& m_fifo;
};

TEST(Fifo, LocksInModeZeroOnly) {
    OpenFifo fifo(4);
    LockWatch watch(fifo);
    for (const int mode : {0, 1, -1, 2}) {
        fifo.setMode(mode);
        fifo.pushText("a");
        fifo.popToStream(&watch, 1);
    }
    EXPECT_THAT(watch.counts, ElementsAre(1, 0, 0, 0));
}

}  // namespace
