#pragma once

/// A growable array of bytes.
///
/// It owns its bytes, and grows in steps rather than to the exact size. Bytes that come into use
/// are zero until they are set. Lack of memory raises `std::bad_alloc`, a size beyond 2147483647
/// `std::length_error`, both before anything has changed. One array belongs to one thread at a
/// time.
template <class Type, class ArgType>
class CArray;

template <>
class CArray<unsigned char, unsigned char> {
  public:
    /// No bytes, automatic steps.
    CArray() = default;
    ~CArray() { delete[] m_pData; }
    CArray(const CArray&) = delete;
    CArray& operator=(const CArray&) = delete;

    /// Sets the number of bytes in use; 0, or less, gives the memory up and forgets the step.
    /// @param growBy the bytes to grow by when room is missing: 0 for an eighth of the size, but 4
    /// to 1024; -1 leaves it as it is.
    void SetSize(int newSize, int growBy = -1);

    /// Stores `value` at `index`, growing when that is not in use; a negative index is ignored.
    void SetAtGrow(int index, unsigned char value);

    /// Appends `value`. @return its index.
    int Add(unsigned char value);

    /// @return the number of bytes in use.
    int GetSize() const { return m_nSize; }

    /// @return the bytes, good until the size next changes; null when there are none.
    unsigned char* GetData() { return m_pData; }
    const unsigned char* GetData() const { return m_pData; }

  protected:
    unsigned char* m_pData = nullptr;
    int m_nSize = 0;     ///< in use
    int m_nMaxSize = 0;  ///< allocated
    int m_nGrowBy = 0;   ///< 0: automatic

  private:
    int grownSize(int newSize, int growBy) const;
};
