// What the buffer hands to other streams.

#include <gmock/gmock.h>

#include <climits>
#include <stdexcept>
#include <string>

#include "UException.h"
#include "fifo_double.h"
#include "record_log.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Stored: "abcde", the first three bytes at the end of the ring, two at its start.
class FifoToStream : public testing::Test {
  protected:
    FifoToStream() {
        fifo.turnTo(8);
        fifo.pushText("abcde");
    }

    std::vector<std::string> records() const { return recordsOf(log); }

    void expectUntouched() {
        EXPECT_EQ(fifo.content(), "abcde");
        EXPECT_EQ(fifo.getTail(), 8);
        EXPECT_EQ(fifo.getHead(), 2);
    }

    OpenFifo fifo{10};
    RecordLog log;
};

std::string line(const std::string& function, const std::string& text) {
    return "1, /FIFOBuffer.cpp, LINE, " + function + ", " + text + "\n";
}

TEST_F(FifoToStream, PopSendsBothPiecesAndRemovesThem) {
    RecordStream stream;
    EXPECT_EQ(fifo.popToStream(&stream, 5), 5);
    EXPECT_THAT(stream.pieces, ElementsAre("abc", "de"));
    EXPECT_EQ(fifo.getTail(), 2);
    EXPECT_EQ(fifo.getDataAvailable(), 0);
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST_F(FifoToStream, ReadSendsBothPiecesAndLeavesThem) {
    RecordStream stream;
    EXPECT_EQ(fifo.readToStream(&stream, 4), 4);
    EXPECT_THAT(stream.pieces, ElementsAre("abc", "d"));
    expectUntouched();
}

TEST_F(FifoToStream, WhatLiesInOnePieceIsSentInOne) {
    RecordStream stream;
    EXPECT_EQ(fifo.popToStream(&stream, 3), 3);
    EXPECT_THAT(stream.pieces, ElementsAre("abc"));
    EXPECT_EQ(fifo.getTail(), 0);
}

TEST_F(FifoToStream, PiecesAreTheRingsOwnMemory) {
    RecordStream stream;
    fifo.readToStream(&stream, 5);
    EXPECT_THAT(stream.places, ElementsAre(fifo.m_pBuffer + 8, fifo.m_pBuffer));
}

TEST_F(FifoToStream, ResultIsTheSumOfWhatTheStreamSaysAndAnyPositiveNumberCountsAsAll) {
    RecordStream stream({1, 100});
    EXPECT_EQ(fifo.popToStream(&stream, 4), 101);
    EXPECT_EQ(fifo.content(), "e");
}

TEST_F(FifoToStream, MoreThanIsStoredIsRefusedBeforeAnythingIsSent) {
    RecordStream stream;
    EXPECT_EQ(fifo.popToStream(&stream, 6), -1);
    EXPECT_EQ(fifo.readToStream(&stream, 7), -1);
    EXPECT_THAT(stream.pieces, IsEmpty());
    expectUntouched();
    EXPECT_THAT(records(),
                ElementsAre(line("CFIFOBuffer::popToStream",
                                 "EXCEPTION - available data < length (available,length), 5, 6"),
                            line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception"),
                            line("CFIFOBuffer::readToStream",
                                 "EXCEPTION - available data < length (available, length), 5, 7"),
                            line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception\n")));
}

TEST_F(FifoToStream, ReadOfNothingFailsAtOnceAndSilently) {
    RecordStream stream;
    for (const long length : {0L, -1L, LONG_MIN}) {
        EXPECT_EQ(fifo.readToStream(&stream, length), -1);
    }
    EXPECT_THAT(stream.pieces, IsEmpty());
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST_F(FifoToStream, PopOfNothingSendsNothingOnceAndTheStreamDecides) {
    RecordStream stream({7, 0});
    EXPECT_EQ(fifo.popToStream(&stream, 0), 7);
    EXPECT_EQ(fifo.popToStream(&stream, 0), -1);
    EXPECT_THAT(stream.pieces, ElementsAre("", ""));
    expectUntouched();
    EXPECT_THAT(
        records(),
        ElementsAre(line("CFIFOBuffer::popToStream",
                         "a_stream->send error #2 (count, m_iHead, m_iTail), 0, 2, 8"),
                    line("CFIFOBuffer::popToStream",
                         "a_stream->send error #2 (a_length, _tail, m_iSize), 0, 8, 11"),
                    line("CFIFOBuffer::popToStream", "EXCEPTION - a_stream->send() error #2"),
                    line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception")));
}

TEST_F(FifoToStream, PopOfANegativeLengthIsPopOfNothing) {
    RecordStream stream({7, 7});
    EXPECT_EQ(fifo.popToStream(&stream, -5), 7);
    EXPECT_EQ(fifo.popToStream(&stream, LONG_MIN), 7);
    EXPECT_THAT(stream.pieces, ElementsAre("", ""));
    expectUntouched();
}

TEST_F(FifoToStream, AStreamThatRefusesTheFirstPieceLeavesTheContent) {
    RecordStream stream({0});
    EXPECT_EQ(fifo.popToStream(&stream, 5), -1);
    EXPECT_THAT(stream.pieces, ElementsAre("abc"));
    expectUntouched();
    EXPECT_THAT(
        records(),
        ElementsAre(line("CFIFOBuffer::popToStream",
                         "a_stream->send error #1 (count, m_iHead, m_iTail), 3, 2, 8"),
                    line("CFIFOBuffer::popToStream",
                         "a_stream->send error #1 (a_length, _tail, m_iSize), 5, 8, 11"),
                    line("CFIFOBuffer::popToStream", "EXCEPTION - a_stream->send() error #1"),
                    line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception")));
}

TEST_F(FifoToStream, AStreamThatRefusesTheLastPieceLeavesTheContentToo) {
    RecordStream stream({3, -1});
    EXPECT_EQ(fifo.popToStream(&stream, 5), -1);
    EXPECT_THAT(stream.pieces, ElementsAre("abc", "de"));
    expectUntouched();
    EXPECT_THAT(
        records(),
        ElementsAre(line("CFIFOBuffer::popToStream",
                         "a_stream->send error #2 (count, m_iHead, m_iTail), 3, 2, 8"),
                    line("CFIFOBuffer::popToStream",
                         "a_stream->send error #2 (a_length, _tail, m_iSize), 2, 0, 11"),
                    line("CFIFOBuffer::popToStream", "EXCEPTION - a_stream->send() error #2"),
                    line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception")));
}

TEST_F(FifoToStream, ReadNamesItselfWhenTheStreamRefuses) {
    RecordStream stream({0});
    EXPECT_EQ(fifo.readToStream(&stream, 5), -1);
    EXPECT_THAT(
        records(),
        ElementsAre(line("CFIFOBuffer::readToStream",
                         "a_stream->send error #1 (count, m_iHead, m_iTail), 3, 2, 8"),
                    line("CFIFOBuffer::readToStream",
                         "a_stream->send error #1 (a_length, _tail, m_iSize), 5, 8, 11"),
                    line("CFIFOBuffer::readToStream", "EXCEPTION - a_stream->send() error #1"),
                    line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception\n")));
}

TEST_F(FifoToStream, ANullStreamTakesNothing) {
    EXPECT_EQ(fifo.popToStream(nullptr, 5), -1);
    EXPECT_EQ(fifo.readToStream(nullptr, 5), -1);
    EXPECT_EQ(fifo.popToStream(nullptr, 0), -1);
    expectUntouched();
}

// A stream that raises what it is told to.
template <typename Exception>
class Raising : public RecordStream {
  public:
    explicit Raising(Exception exception) : m_exception(exception) {}
    long send(long /*length*/, unsigned char* /*data*/) override { throw Exception(m_exception); }

  private:
    Exception m_exception;
};

TEST_F(FifoToStream, AnExceptionOfTheStreamGivesItsCodeAndLeavesTheContent) {
    Raising<UException> stream(UException(-42, "%s", "no line"));
    EXPECT_EQ(fifo.popToStream(&stream, 5), -42);
    EXPECT_EQ(fifo.readToStream(&stream, 5), -42);
    expectUntouched();
    ASSERT_FALSE(log.items().empty());
    EXPECT_EQ(withoutLine(log.items().back()),
              line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception\n"));
}

TEST_F(FifoToStream, ABreakOfTheStreamEndsQuietly) {
    Raising<UBreakException> stream{UBreakException()};
    EXPECT_EQ(fifo.popToStream(&stream, 5), 0);
    expectUntouched();
    EXPECT_THAT(log.items(), IsEmpty());
}

TEST_F(FifoToStream, AnyOtherExceptionOfTheStreamIsAFailure) {
    Raising<std::runtime_error> stream(std::runtime_error("cable cut"));
    EXPECT_EQ(fifo.popToStream(&stream, 5), -1);
    expectUntouched();
    EXPECT_EQ(records().back(), line("", "EXCEPTION caught: CFIFOBuffer::popToStream - exception"));
    Raising<int> odd(5);
    EXPECT_EQ(fifo.popToStream(&odd, 5), -1);
}

TEST_F(FifoToStream, OneBufferDrainsIntoAnother) {
    OpenFifo other(4);
    EXPECT_EQ(fifo.popToStream(&other, 4), 4);
    EXPECT_EQ(other.content(), "abcd");
    EXPECT_EQ(fifo.content(), "e");
    EXPECT_EQ(fifo.popToStream(&other, 1), -1);
    EXPECT_EQ(fifo.content(), "e");
}

TEST_F(FifoToStream, ABufferMaySendToItself) {
    EXPECT_EQ(fifo.popToStream(&fifo, 4), 4);
    EXPECT_EQ(fifo.content(), "eabcd");
    EXPECT_EQ(fifo.m_iLockCount, 0);
}

// A stream that uses the buffer that sends to it.
class CallingBack : public RecordStream {
  public:
    CallingBack(OpenFifo& fifo, int way) : m_fifo(fifo), m_way(way) {}
    long send(long length, unsigned char* data) override {
        RecordStream::send(length, data);
        if (m_way == 0) m_fifo.clear();
        if (m_way == 1) m_fifo.skip(2);
        if (m_way == 2) m_fifo.pushText("xyz");
        if (m_way == 3) m_fifo.Unlock();
        if (m_way == 4) m_fifo.setMode(1);
        return length;
    }

  private:
    OpenFifo& m_fifo;
    int m_way;
};

TEST_F(FifoToStream, AStreamThatCallsBackLeavesTheIndicesInRange) {
    for (int way = 0; way < 5; ++way) {
        fifo.setMode(0);
        fifo.turnTo(8);
        fifo.pushText("abcde");
        CallingBack stream(fifo, way);
        EXPECT_EQ(fifo.popToStream(&stream, 5), 5) << way;
        EXPECT_THAT(stream.pieces, ElementsAre("abc", "de")) << way;
        EXPECT_EQ(fifo.getTail(), 2) << way;
        EXPECT_LT(fifo.getHead(), 11) << way;
        EXPECT_EQ(fifo.m_iLockCount, 0) << way;
    }
}

}  // namespace
