#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <new>

#include "CFIFOBuffer.h"
#include "LogRecord.h"
#include "StrFormat.h"
#include "URaise.h"

namespace {

void requireRoom(const URaisedIn& in, const char* failed, int room, long length) {
    if (room < length) URaise(in, failed, room, static_cast<long long>(length));
}

void requirePointer(const URaisedIn& in, const void* data, long length) {
    if (data == nullptr && length > 0) {
        URaise(in, "data is NULL (length)", static_cast<long long>(length));
    }
}

// What is said when a stream does not take a piece.
struct RefusedTexts {
    const char* stored;
    const char* asked;
    const char* raised;
};
constexpr RefusedTexts kFirstRefused{"a_stream->send error #1 (count, m_iHead, m_iTail)",
                                     "a_stream->send error #1 (a_length, _tail, m_iSize)",
                                     "a_stream->send() error #1"};
constexpr RefusedTexts kLastRefused{"a_stream->send error #2 (count, m_iHead, m_iTail)",
                                    "a_stream->send error #2 (a_length, _tail, m_iSize)",
                                    "a_stream->send() error #2"};

void copy(unsigned char* to, const unsigned char* from, int length) {
    if (length > 0) std::memcpy(to, from, static_cast<std::size_t>(length));
}

void logNoStorage(int capacity) noexcept {
    const int error = errno;
    try {
        writeLogRecord(
            2, SourcePlace::current(), "CFIFOBuffer::Init",
            StrFormat("Failed to allocate memory (size: %1, error: %2)").arg(capacity).arg(error));
    } catch (const std::bad_alloc&) {
        // As lost as any record for which there is no memory.
    }
}

}  // namespace

// Holds the buffer's lock for the length of a scope, in mode 0.
class CFIFOBuffer::Locked {
  public:
    explicit Locked(CFIFOBuffer& buffer)
        : m_buffer(buffer.m_iMode.load(std::memory_order_relaxed) == 0 ? &buffer : nullptr) {
        if (m_buffer != nullptr) m_buffer->Lock();
    }
    ~Locked() {
        if (m_buffer != nullptr) m_buffer->Release();
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    CFIFOBuffer* const m_buffer;
};

// A run of bytes that goes to a stream in one call.
struct CFIFOBuffer::Piece {
    int from;
    int length;
    int count;  // bytes before the ring's end that have gone or go now
    int left;   // bytes that have not gone yet
    const RefusedTexts& texts;
};

struct CFIFOBuffer::Sent {
    long total;  // the sum of the stream's results
    int end;     // the index behind the bytes sent
};

// The result is 0 until `body` sets it, which it does last.
template <typename Result, typename Body>
Result CFIFOBuffer::Guarded(const UCaughtIn& in, Body&& body) {
    const Locked locked(*this);
    Result result = 0;
    const int failure = UGuarded(in, [&] { body(result); });
    return failure == 0 ? result : failure;
}

CFIFOBuffer::CFIFOBuffer(int capacity) { Init(capacity); }

void CFIFOBuffer::Init(int capacity) {
    SetHead(0);
    SetTail(0);
    m_iSize = capacity >= 0 && capacity < INT_MAX ? capacity + 1 : 0;
    try {
        m_pBuffer = m_memory.malloc(m_iSize);
    } catch (const UException&) {
        m_pBuffer = nullptr;
    }
    if (m_pBuffer == nullptr) logNoStorage(capacity);
}

long CFIFOBuffer::push(unsigned char* data, long length) {
    return Guarded<long>("CFIFOBuffer::push - exception", [&](long& pushed) {
        requireRoom("CFIFOBuffer::push", "free space < length (free space, length)", Free(),
                    length);
        requirePointer("CFIFOBuffer::push", data, length);
        const auto count = static_cast<int>(std::max(length, 0L));
        CopyIn(data, count);
        SetHead(Behind(getHead(), count));
        pushed = count;
    });
}

int CFIFOBuffer::read(unsigned char* data, int length) {
    return Guarded<int>("CFIFOBuffer::read - exception", [&](int& result) {
        requireRoom("CFIFOBuffer::read", "available data < length (available , length)", Stored(),
                    length);
        requirePointer("CFIFOBuffer::read", data, length);
        CopyOut(data, length);
        result = length;
    });
}

long CFIFOBuffer::pop(unsigned char* data, long length) {
    return Guarded<long>("CFIFOBuffer::pop - exception", [&](long& popped) {
        requireRoom("CFIFOBuffer::pop", "available data < length (available, length)", Stored(),
                    length);
        requirePointer("CFIFOBuffer::pop", data, length);
        const auto count = static_cast<int>(std::max(length, 0L));
        CopyOut(data, count);
        SetTail(Behind(getTail(), count));
        popped = count;
    });
}

int CFIFOBuffer::skip(int length) {
    return Guarded<int>("CFIFOBuffer::skip - exception", [&](int&) {
        requireRoom("CFIFOBuffer::skip", "available data < length (available, length)", Stored(),
                    length);
        SetTail(Behind(getTail(), length));
    });
}

int CFIFOBuffer::popToAutoMemory(AutoMemory& out) {
    // The class name is doubled in the published text.
    return Guarded<int>("CFIFOBuffer::CFIFOBuffer::popToAutoMemory() - EXCEPTION", [&](int&) {
        const int stored = Stored();
        out.mallocEx(stored, 0);
        if (pop(out, stored) == -1) URaise("CFIFOBuffer::popToAutoMemory()", "pop() FAILED");
    });
}

long CFIFOBuffer::readToStream(CStream* stream, long length) {
    if (length < 1) return -1;
    constexpr const char* name = "CFIFOBuffer::readToStream";
    // Published with the other operation's name and a line end.
    return Guarded<long>("CFIFOBuffer::popToStream - exception\n", [&](long& sent) {
        requireRoom(name, "available data < length (available, length)", Stored(), length);
        sent = SendStored(name, stream, static_cast<int>(length)).total;
    });
}

long CFIFOBuffer::popToStream(CStream* stream, long length) {
    constexpr const char* name = "CFIFOBuffer::popToStream";
    return Guarded<long>("CFIFOBuffer::popToStream - exception", [&](long& total) {
        requireRoom(name, "available data < length (available,length)", Stored(), length);
        const Sent sent = SendStored(name, stream, static_cast<int>(std::max(length, 0L)));
        SetTail(sent.end);
        total = sent.total;
    });
}

int CFIFOBuffer::getDataAvailable() {
    const Locked locked(*this);
    return Stored();
}

int CFIFOBuffer::getFreeSpace() {
    const Locked locked(*this);
    return Free();
}

int CFIFOBuffer::clear() {
    const Locked locked(*this);
    SetHead(0);
    SetTail(0);
    return 0;
}

void CFIFOBuffer::Lock() {
    m_cs.Lock();
    ++m_iLockCount;
}

int CFIFOBuffer::Unlock() {
    // Only under the lock can the count be read; where it cannot be had, another thread holds it.
    if (!m_cs.TryLock()) return 0;
    Release();
    m_cs.Unlock();
    return 0;
}

// Requires: nobody else holds the lock.
void CFIFOBuffer::Release() {
    if (m_iLockCount == 0) return;
    --m_iLockCount;
    m_cs.Unlock();
}

int CFIFOBuffer::Stored() const {
    const int stored = getHead() - getTail();
    return stored >= 0 ? stored : stored + static_cast<int>(m_memory.getSize());
}

int CFIFOBuffer::Free() const { return static_cast<int>(m_memory.getSize()) - 1 - Stored(); }

// The index `length` bytes behind `index`, round the end of the ring; `index` for no length.
int CFIFOBuffer::Behind(int index, int length) const {
    if (length <= 0) return index;
    const int toEnd = m_iSize - index;
    return length < toEnd ? index + length : length - toEnd;
}

void CFIFOBuffer::CopyIn(const unsigned char* data, int length) {
    if (length <= 0) return;
    const int head = getHead();
    const int first = std::min(length, m_iSize - head);
    copy(m_pBuffer + head, data, first);
    copy(m_pBuffer, data + first, length - first);
}

void CFIFOBuffer::CopyOut(unsigned char* data, int length) const {
    if (length <= 0) return;
    const int tail = getTail();
    const int first = std::min(length, m_iSize - tail);
    copy(data, m_pBuffer + tail, first);
    copy(data + first, m_pBuffer, length - first);
}

CFIFOBuffer::Sent CFIFOBuffer::SendStored(const char* function, CStream* stream, int length) const {
    Sent sent{0, getTail()};
    int count = 0;
    if (const int toEnd = m_iSize - sent.end; toEnd < length) {
        count = toEnd;
        sent.total += SendPiece(function, stream, {sent.end, toEnd, count, length, kFirstRefused});
        sent.end = 0;
        length -= toEnd;
    }
    sent.total += SendPiece(function, stream, {sent.end, length, count, length, kLastRefused});
    sent.end = Behind(sent.end, length);
    return sent;
}

// Returns the stream's result, which is above 0; raises when it is not.
long CFIFOBuffer::SendPiece(const char* function, CStream* stream, const Piece& piece) const {
    const long taken = stream == nullptr ? 0 : stream->send(piece.length, m_pBuffer + piece.from);
    if (taken > 0) return taken;
    const auto log = [function](const char* what, int a, int b, int c) {
        writeLogRecord(1, SourcePlace::current(), function,
                       StrFormat("%1, %2, %3, %4").arg(what).arg(a).arg(b).arg(c));
    };
    log(piece.texts.stored, piece.count, getHead(), getTail());
    log(piece.texts.asked, piece.left, piece.from, m_iSize);
    URaise(function, piece.texts.raised);
}
