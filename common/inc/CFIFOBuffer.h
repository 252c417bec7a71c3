#pragma once

#include <atomic>

#include "AutoMemory.h"
#include "CStream.h"
#include "UCriticalSection.h"
#include "UGuarded.h"

/// A ring of bytes with a fixed capacity: what is pushed first comes out first. It is a stream
/// itself, and hands its content to other streams without copying it.
///
/// Threads: in mode 0 every operation takes the buffer's own recursive lock, and a caller may hold
/// it over several operations (`Lock`). In any other mode nothing is locked and the caller sees to
/// it. `getHead`, `getTail` and `setMode` never lock and may be called at any time.
///
/// Nothing is raised. An operation that fails has logged why, gives the exception's error code (-1
/// for all of its own) and has changed nothing. A negative length moves nothing; a null pointer for
/// a length above 0 is a failure.
class CFIFOBuffer : public CStream {
  public:
    /// A capacity of 70000 bytes.
    CFIFOBuffer() : CFIFOBuffer(70000) {}
    /// Room for `capacity` bytes, as by `Init`; mode 0.
    explicit CFIFOBuffer(int capacity);
    CFIFOBuffer(const CFIFOBuffer&) = delete;
    CFIFOBuffer& operator=(const CFIFOBuffer&) = delete;

    /// Forgets the content and makes room for `capacity` bytes. Without memory for them, or with a
    /// negative capacity, the buffer has no room at all (its free space is -1), which is logged at
    /// level 2. Takes no lock, and must not be called by a stream that the buffer sends to.
    void Init(int capacity);

    /// Appends `length` bytes; fails when there is no room for all. @return how many.
    long push(unsigned char* data, long length);
    /// Copies the oldest `length` bytes out and leaves them; fails when there are fewer.
    /// @return `length`.
    int read(unsigned char* data, int length);
    /// Copies the oldest `length` bytes out and removes them; fails when there are fewer.
    /// @return how many.
    long pop(unsigned char* data, long length);
    /// Removes the oldest `length` bytes; fails when there are fewer. @return 0.
    int skip(int length);
    /// Moves the whole content into `out`, which becomes as long as that. @return 0.
    int popToAutoMemory(AutoMemory& out);

    /// Sends the oldest `length` bytes to `stream`, in two pieces where they lie so, and leaves
    /// them. Fails when there are fewer, or when the stream takes nothing of a piece: a null stream
    /// never takes anything. @return the sum of what `send` gave; -1 for a length below 1.
    long readToStream(CStream* stream, long length);
    /// The same, and removes the bytes once all are sent: any positive result of `send` counts as
    /// the whole piece. A length of 0 or less still sends, once, nothing; kept so on purpose.
    long popToStream(CStream* stream, long length);

    /// @return how many bytes are stored, and how many more would fit.
    int getDataAvailable();
    int getFreeSpace();
    /// Forgets the content. @return 0.
    int clear();

    /// @return the index of the next byte to be written, and of the oldest byte.
    int getHead() const { return m_iHead.load(std::memory_order_relaxed); }
    int getTail() const { return m_iTail.load(std::memory_order_relaxed); }

    /// 0: every operation locks; anything else: none does. @return the mode before.
    int setMode(int mode) { return m_iMode.exchange(mode, std::memory_order_relaxed); }

    /// Takes the buffer's lock, once more if this thread holds it.
    void Lock();
    /// Gives it back once; does nothing on a thread that does not hold it. @return 0.
    int Unlock();

    /// `pop` and `push`.
    long receive(long length, unsigned char* data) override { return pop(data, length); }
    long send(long length, unsigned char* data) override { return push(data, length); }

  protected:
    std::atomic<int> m_iMode{0};
    int m_iLockCount = 0;                ///< times that the lock is held
    unsigned char* m_pBuffer = nullptr;  ///< what m_memory owns
    AutoMemory m_memory;
    std::atomic<int> m_iHead{0};
    std::atomic<int> m_iTail{0};
    int m_iSize = 0;  ///< the capacity and one byte that stays empty
    UCriticalSection m_cs;

  private:
    class Locked;
    struct Piece;
    struct Sent;

    template <typename Result, typename Body>
    Result Guarded(const UCaughtIn& in, Body&& body);
    void Release();

    void SetHead(int index) { m_iHead.store(index, std::memory_order_relaxed); }
    void SetTail(int index) { m_iTail.store(index, std::memory_order_relaxed); }
    int Stored() const;
    int Free() const;
    int Behind(int index, int length) const;
    void CopyIn(const unsigned char* data, int length);
    void CopyOut(unsigned char* data, int length) const;
    Sent SendStored(const char* function, CStream* stream, int length) const;
    long SendPiece(const char* function, CStream* stream, const Piece& piece) const;
};
