// The buffer beside a deque.

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>

#include "fifo_double.h"
#include "random_seed.h"

namespace {

std::string numbered(int length, int first) {
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>((first + i) % 251);
    return text;
}

std::string joined(const RecordStream& stream) {
    std::string text;
    for (const std::string& piece : stream.pieces) text += piece;
    return text;
}

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
    for (int capacity = 0; capacity <= 8; ++capacity) {
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
    for (int capacity = 9; capacity <= 64; capacity += kSanitized ? 11 : 5) {
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

// A buffer and its model, both taken through one random operation at a time.
class Pair {
  public:
    Pair(int capacity, std::uint32_t seed)
        : m_capacity(capacity), m_fifo(capacity), m_random(seed) {}

    void step() {
        const int length = static_cast<int>(m_random() % static_cast<unsigned>(m_capacity + 3)) - 1;
        switch (m_random() % 8) {
            case 0:
            case 1:
            case 2:
                push(length);
                break;
            case 3:
                pop(length);
                break;
            case 4:
                ASSERT_EQ(m_fifo.skip(length), has(length) ? 0 : -1);
                if (has(length)) erase(length);
                break;
            case 5:
                popToStream(length);
                break;
            case 6:
                readToStream(length);
                break;
            default:
                m_random() % 50 == 0 ? clear() : popAll();
        }
        ASSERT_EQ(m_fifo.content(), std::string(m_model.begin(), m_model.end()));
        ASSERT_EQ(m_fifo.getFreeSpace(), m_capacity - static_cast<int>(m_model.size()));
        ASSERT_TRUE(m_fifo.getHead() >= 0 && m_fifo.getHead() <= m_capacity);
        ASSERT_TRUE(m_fifo.getTail() >= 0 && m_fifo.getTail() <= m_capacity);
        ASSERT_EQ(m_fifo.m_iLockCount, 0);
    }

  private:
    bool has(int length) const { return length <= static_cast<int>(m_model.size()); }
    void erase(int length) {
        m_model.erase(m_model.begin(), m_model.begin() + std::max(length, 0));
    }
    std::string oldest(int length) const {
        return {m_model.begin(), m_model.begin() + std::max(length, 0)};
    }

    void push(int length) {
        std::string text = numbered(std::max(length, 0), static_cast<int>(m_random() % 251));
        const long result = m_fifo.push(reinterpret_cast<unsigned char*>(text.data()), length);
        if (length > m_capacity - static_cast<int>(m_model.size())) {
            ASSERT_EQ(result, -1);
            return;
        }
        ASSERT_EQ(result, std::max(length, 0));
        m_model.insert(m_model.end(), text.begin(), text.end());
    }

    void pop(int length) {
        std::string text(static_cast<std::size_t>(std::max(length, 0)), '?');
        const long result = m_fifo.pop(reinterpret_cast<unsigned char*>(text.data()), length);
        ASSERT_EQ(result, has(length) ? std::max(length, 0) : -1);
        if (!has(length)) return;
        ASSERT_EQ(text, oldest(length));
        erase(length);
    }

    void popToStream(int length) {
        RecordStream stream({answer(), answer()});
        const long result = m_fifo.popToStream(&stream, length);
        if (!has(length)) {
            ASSERT_TRUE(stream.pieces.empty());
        }
        if (result == -1) return;
        ASSERT_EQ(joined(stream), oldest(length));
        erase(length);
    }

    void readToStream(int length) {
        RecordStream stream;
        const bool can = length > 0 && has(length);
        ASSERT_EQ(m_fifo.readToStream(&stream, length), can ? length : -1);
        if (can) {
            ASSERT_EQ(joined(stream), oldest(length));
        }
    }

    void popAll() {
        AutoMemory out;
        ASSERT_EQ(m_fifo.popToAutoMemory(out), 0);
        const auto* const bytes = out.getPtr();
        ASSERT_EQ(std::string(bytes, bytes + out.getSize()),
                  std::string(m_model.begin(), m_model.end()));
        m_model.clear();
    }

    void clear() {
        m_fifo.clear();
        m_model.clear();
    }

    // What a stream says of a piece: mostly something positive.
    long answer() { return static_cast<long>(m_random() % 6) - 1; }

    int m_capacity;
    OpenFifo m_fifo;
    std::deque<char> m_model;
    std::mt19937 m_random;
};

TEST(FifoModel, BehavesLikeADequeOverRandomOperations) {
    const std::uint32_t seed = randomSeed();
    for (const int capacity : {1, 7, 64, 1000}) {
        Pair pair(capacity, seed);
        for (int i = 0; i < randomRounds(40000); ++i) {
            pair.step();
            ASSERT_FALSE(HasFatalFailure()) << "capacity " << capacity << " step " << i;
        }
    }
}

}  // namespace
