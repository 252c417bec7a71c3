#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>

#include "choices.h"
#include "fifo_double.h"

/// `length` bytes that tell where in a sequence they stand.
inline std::string numbered(int length, int first) {
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>((first + i) % 251);
    return text;
}

/// What a stream was sent, pieces together.
inline std::string joined(const RecordStream& stream) {
    std::string text;
    for (const std::string& piece : stream.pieces) text += piece;
    return text;
}

/// A buffer and its model, both taken through one operation at a time, which must do the same to
/// both; after every one the content, the room, the indices and the lock are looked at.
class FifoAndDeque {
  public:
    FifoAndDeque(int capacity, Choices& choices)
        : m_capacity(capacity), m_fifo(capacity), m_choices(choices) {}

    void step() {
        const int length = static_cast<int>(below(m_capacity + 3)) - 1;
        switch (below(8)) {
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
                below(50) == 0 ? clear() : popAll();
        }
        ASSERT_EQ(m_fifo.content(), std::string(m_model.begin(), m_model.end()));
        ASSERT_EQ(m_fifo.getFreeSpace(), m_capacity - static_cast<int>(m_model.size()));
        ASSERT_TRUE(m_fifo.getHead() >= 0 && m_fifo.getHead() <= m_capacity);
        ASSERT_TRUE(m_fifo.getTail() >= 0 && m_fifo.getTail() <= m_capacity);
        ASSERT_EQ(m_fifo.m_iLockCount, 0);
    }

  private:
    std::size_t below(int count) { return m_choices.below(static_cast<std::size_t>(count)); }
    bool has(int length) const { return length <= static_cast<int>(m_model.size()); }
    void erase(int length) {
        m_model.erase(m_model.begin(), m_model.begin() + std::max(length, 0));
    }
    std::string oldest(int length) const {
        return {m_model.begin(), m_model.begin() + std::max(length, 0)};
    }

    void push(int length) {
        std::string text = numbered(std::max(length, 0), static_cast<int>(below(251)));
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
        const long first = answer();
        const long second = answer();
        RecordStream stream({first, second});
        const bool wraps = m_capacity + 1 - m_fifo.getTail() < length;
        const long result = m_fifo.popToStream(&stream, length);
        if (!has(length)) {
            ASSERT_EQ(result, -1);
            ASSERT_TRUE(stream.pieces.empty());
            return;
        }
        const bool isTaken = first > 0 && (!wraps || second > 0);
        ASSERT_EQ(result, isTaken ? first + (wraps ? second : 0) : -1);
        if (!isTaken) return;
        ASSERT_EQ(stream.pieces.size(), wraps ? 2U : 1U);
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
    long answer() { return static_cast<long>(below(6)) - 1; }

    int m_capacity;
    OpenFifo m_fifo;
    std::deque<char> m_model;
    Choices& m_choices;
};
