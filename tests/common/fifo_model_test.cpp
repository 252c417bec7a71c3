// The buffer beside a deque.

#include <gtest/gtest.h>

#include <string>

#include "fifo_model.h"
#include "random_seed.h"

namespace {

// Every operation with every length on a buffer whose content, `text`, starts at `tail`.
void tryEveryLength(OpenFifo& fifo, int capacity, int tail, const std::string& text) {
    const int stored = static_cast<int>(text.size());
    const auto fill = [&] {
        fifo.turnTo(tail);
        fifo.pushText(text);
    };
    for (int length = 0; length <= capacity + 1; ++length) {
        const bool has = length <= stored;
        const std::string part = text.substr(0, static_cast<std::size_t>(length));
        const std::string rest = has ? text.substr(static_cast<std::size_t>(length)) : text;
        fill();
        const std::string more = numbered(length, 100);
        const bool fits = length <= capacity - stored;
        ASSERT_EQ(fifo.pushText(more), fits ? length : -1);
        ASSERT_EQ(fifo.content(), fits ? text + more : text);
        fill();
        ASSERT_EQ(fifo.popText(length), has ? part : "-1");
        ASSERT_EQ(fifo.content(), rest);
        fill();
        ASSERT_EQ(fifo.skip(length), has ? 0 : -1);
        ASSERT_EQ(fifo.content(), rest);
        fill();
        RecordStream stream;
        ASSERT_EQ(fifo.readToStream(&stream, length), has && length > 0 ? length : -1);
        ASSERT_EQ(joined(stream), has ? part : "");
        ASSERT_EQ(fifo.content(), text);
        RecordStream popped({1, 1});
        const long taken = fifo.popToStream(&popped, length);
        ASSERT_EQ(taken, has ? static_cast<long>(popped.pieces.size()) : -1);
        ASSERT_EQ(joined(popped), has ? part : "");
        ASSERT_EQ(fifo.content(), rest);
        ASSERT_LT(fifo.getTail(), capacity + 1);
    }
}

TEST(FifoModel, EveryHeadTailAndLengthOfSmallCapacities) {
    for (int capacity = 0; capacity <= (kSanitized ? 8 : 16); ++capacity) {
        OpenFifo fifo(capacity);
        for (int tail = 0; tail <= capacity; ++tail) {
            for (int stored = 0; stored <= capacity; ++stored) {
                tryEveryLength(fifo, capacity, tail, numbered(stored, 1));
                ASSERT_FALSE(HasFatalFailure()) << capacity << ' ' << tail << ' ' << stored;
            }
        }
    }
}

TEST(FifoModel, PushAndPopAtEveryHeadAndTailOfCapacitiesUpTo64) {
    for (int capacity = 9; capacity <= 64; capacity += kSanitized ? 11 : 1) {
        OpenFifo fifo(capacity);
        for (int tail = 0; tail <= capacity; ++tail) {
            for (int stored = 0; stored <= capacity; ++stored) {
                const std::string text = numbered(stored, tail);
                fifo.turnTo(tail);
                ASSERT_EQ(fifo.pushText(text), stored);
                ASSERT_EQ(fifo.getDataAvailable(), stored);
                ASSERT_EQ(fifo.getFreeSpace(), capacity - stored);
                ASSERT_EQ(fifo.popText(stored), text);
                ASSERT_EQ(fifo.getTail(), fifo.getHead());
            }
        }
    }
}

TEST(FifoModel, BehavesLikeADequeOverRandomOperations) {
    const std::uint32_t seed = randomSeed();
    for (const int capacity : {1, 7, 64, 1000}) {
        RandomChoices random(seed);
        FifoAndDeque pair(capacity, random);
        for (int i = 0; i < randomRounds(40000); ++i) {
            pair.step();
            ASSERT_FALSE(HasFatalFailure()) << "capacity " << capacity << " step " << i;
        }
    }
}

}  // namespace
