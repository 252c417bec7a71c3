#pragma once

/// A hash over bytes that arrive in pieces.
///
/// One hash is `Init`, any number of `Update`s, `Final`. Objects own their state, hold no
/// reference to what they hashed, and are not shared between threads.
class CHash {
  public:
    virtual ~CHash() = default;

    /// Begins a new hash.
    virtual void Init() = 0;

    /// Adds `len` bytes; nothing when `data` is null or `len` is not positive.
    virtual void Update(const unsigned char* data, int len) = 0;

    /// Ends the hash: writes `HashLengthBits() / 8` bytes to `digest`. `Init` must come before the
    /// next hash.
    virtual void Final(unsigned char* digest) = 0;

    /// The whole hash of `len` bytes in one call: `Init`, `Update`, `Final` of this object.
    virtual void HashBuffer(unsigned char* digest, const unsigned char* data, int len) = 0;

    /// @return the length of the digest in bits.
    virtual int HashLengthBits() const = 0;
};

/// MD5 (RFC 1321).
class CMD5 : public CHash {
  public:
    /// Selects the constructor for storage that is to stay zero.
    enum ZeroFilled { zeroFilled };

    /// Ready to hash.
    CMD5();

    /// Every field zero: like an object after `Final`, it must see `Init` before it hashes. For a
    /// member of a record that is handed out zero-filled.
    explicit CMD5(ZeroFilled) {}

    /// Sets the chaining words and the byte count; what is left in the input block stays there.
    void Init() override;
    void Update(const unsigned char* data, int len) override;

    /// Writes 16 bytes (none when `digest` is null) and wipes the whole state.
    void Final(unsigned char* digest) override;
    void HashBuffer(unsigned char* digest, const unsigned char* data, int len) override;

    /// @return 128.
    int HashLengthBits() const override;

    /// Turns `count` words at `words` from little-endian byte order into the host's, in place.
    static void byteSwap(unsigned int* words, unsigned int count);

    /// Mixes the block of 16 words at `in` into the four chaining words at `buf`.
    static void Transform(unsigned int* buf, const unsigned int* in);

  protected:
    unsigned int buf[4] = {};    ///< The chaining words A, B, C, D.
    unsigned int bytes[2] = {};  ///< Count of bytes hashed so far: low word, high word.
    unsigned int in[16] = {};    ///< The partial block, its bytes in message order.
};
