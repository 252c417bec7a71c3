// The buffer between threads; run under the thread sanitizer, too.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "fifo_double.h"
#include "on_threads.h"

namespace {

// Short runs, and a ring that is seldom full or empty, for whoever finds it so gives the processor
// away.
constexpr int kLongestRun = 13;
constexpr int kBytes = kThreadSteps * (kLongestRun + 1) / 2;
constexpr int kCapacity = 2000;

// Checks that bytes come in the order in which the producer numbers them.
class OrderedSink : public RecordStream {
  public:
    long send(long length, unsigned char* data) override {
        for (long i = 0; i < length; ++i, ++received) {
            if (data[i] != static_cast<unsigned char>(received)) inOrder = false;
        }
        return length;
    }
    int received = 0;
    bool inOrder = true;
};

// Pushes numbered bytes in runs of changing length.
void produce(OpenFifo& fifo, bool locking) {
    unsigned char run[kLongestRun];
    for (int sent = 0, length = 1; sent < kBytes; length = length % kLongestRun + 1) {
        const int count = std::min(length, kBytes - sent);
        for (int i = 0; i < count; ++i) run[i] = static_cast<unsigned char>(sent + i);
        if (locking) fifo.Lock();
        const bool fits = fifo.getFreeSpace() >= count;
        if (fits && fifo.push(run, count) == count) sent += count;
        if (locking) fifo.Unlock();
        if (!fits) std::this_thread::yield();
    }
}

TEST(FifoThreads, OneProducerAndOneStreamConsumerInLockingMode) {
    OpenFifo fifo(kCapacity);
    OrderedSink sink;
    std::thread producer([&] { produce(fifo, false); });
    while (sink.received < kBytes) {
        const int available = fifo.getDataAvailable();
        if (available == 0) {
            std::this_thread::yield();
        } else {
            fifo.popToStream(&sink, available);
        }
        EXPECT_LE(fifo.getHead(), kCapacity);
        EXPECT_LE(fifo.getTail(), kCapacity);
    }
    producer.join();
    EXPECT_TRUE(sink.inOrder);
    EXPECT_EQ(fifo.getDataAvailable(), 0);
}

TEST(FifoThreads, CallersHoldTheLockInTheOtherMode) {
    OpenFifo fifo(kCapacity);
    fifo.setMode(1);
    OrderedSink sink;
    std::thread producer([&] { produce(fifo, true); });
    while (sink.received < kBytes) {
        fifo.Lock();
        const int available = fifo.getDataAvailable();
        if (available > 0) fifo.popToStream(&sink, available);
        fifo.Unlock();
        if (available == 0) std::this_thread::yield();
    }
    producer.join();
    EXPECT_TRUE(sink.inOrder);
}

TEST(FifoThreads, ACallerHoldsTheBufferOverSeveralOperations) {
    OpenFifo fifo(100);
    std::atomic<bool> stop{false};
    std::thread other([&] {
        while (!stop) {
            fifo.Lock();
            fifo.pushText("xy");
            fifo.skip(2);
            fifo.Unlock();
        }
    });
    for (int i = 0; i < kThreadSteps / 2; ++i) {
        fifo.Lock();
        const int before = fifo.getDataAvailable();
        fifo.pushText("abc");
        EXPECT_EQ(fifo.getDataAvailable(), before + 3);
        fifo.clear();
        fifo.Unlock();
        fifo.Unlock();
    }
    stop = true;
    other.join();
}

}  // namespace
