#pragma once

#include <string>
#include <utility>
#include <vector>

#include "CFIFOBuffer.h"

/// Shows the buffer's fields.
class OpenFifo : public CFIFOBuffer {
  public:
    using CFIFOBuffer::CFIFOBuffer;
    using CFIFOBuffer::m_iLockCount;
    using CFIFOBuffer::m_iMode;
    using CFIFOBuffer::m_iSize;
    using CFIFOBuffer::m_memory;
    using CFIFOBuffer::m_pBuffer;

    long pushText(const std::string& text) {
        std::string copy = text;
        return push(reinterpret_cast<unsigned char*>(copy.data()), static_cast<long>(copy.size()));
    }

    /// What `length` bytes popped are; the result when that is not `length`.
    std::string popText(long length) {
        std::string text(static_cast<std::size_t>(length), '?');
        const long result = pop(reinterpret_cast<unsigned char*>(text.data()), length);
        return result == length ? text : std::to_string(result);
    }

    /// What is stored, read without removing it.
    std::string content() {
        std::string text(static_cast<std::size_t>(getDataAvailable()), '?');
        read(reinterpret_cast<unsigned char*>(text.data()), getDataAvailable());
        return text;
    }

    /// Brings the empty buffer's indices to `at`.
    void turnTo(int at) {
        clear();
        while (getTail() != at) {
            pushText("-");
            skip(1);
        }
    }
};

/// A stream that keeps what it is sent, and answers as it is told.
class RecordStream : public CStream {
  public:
    /// Answers the length of each piece, but `results` for the first ones.
    explicit RecordStream(std::vector<long> results = {}) : m_results(std::move(results)) {}

    long receive(long /*length*/, unsigned char* /*data*/) override { return -1; }
    long send(long length, unsigned char* data) override {
        pieces.emplace_back(reinterpret_cast<const char*>(data), static_cast<std::size_t>(length));
        places.push_back(data);
        return pieces.size() <= m_results.size() ? m_results[pieces.size() - 1] : length;
    }

    std::vector<std::string> pieces;
    std::vector<const unsigned char*> places;

  private:
    std::vector<long> m_results;
};
