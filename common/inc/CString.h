#pragma once

#include <cassert>
#include <compare>
#include <cstdarg>
#include <cstddef>

/// The library's text: 8-bit characters, NUL-terminated, shared by reference count and copied on
/// write. One pointer wide; converts to a read-only character pointer wherever one is wanted.
///
/// Threads: objects that share a text may be copied, assigned, changed and destroyed on different
/// threads; one object must not be used from two threads at once. Ownership: an object owns its
/// reference to the block; pointers handed out stay good until the object is next changed.
///
/// A null `const char*` counts as "" in every operation. Lengths and indexes are bytes. A result
/// longer than 2147483647 bytes raises `std::length_error`, lack of memory `std::bad_alloc`, both
/// before anything has changed. Every block is exactly as long as its text when made: reserve room
/// with `GetBuffer` before appending in a loop.
class CString {
  public:
    /// What stands directly before the characters, in the same heap block.
    struct CStringData {
        /// Objects that share this block; -1 when it is locked, and for ever in the empty record.
        long refCount;
        /// Length of the text, without its terminator.
        int dataLength;
        /// Capacity of the block, without the terminator's byte.
        int allocLength;

        /// @return the characters behind this header.
        char* data() { return reinterpret_cast<char*>(this + 1); }
    };

    /// The empty text; allocates nothing.
    CString() { Init(); }
    /// Shares the other's text, or copies it when its buffer is locked.
    CString(const CString& other);
    /// Takes the other's text over and leaves it empty.
    CString(CString&& other) noexcept : m_pchData(other.m_pchData) { other.Init(); }
    /// Copies a NUL-terminated text.
    CString(const char* text);
    /// Copies `length` bytes, NULs included; a length below 1 gives the empty text.
    CString(const char* text, int length);
    /// `count` times `ch`; a count below 1 gives the empty text.
    CString(char ch, int count);
    ~CString() {
        if (!IsNil()) Release(GetData());
    }

    /// Shares the other's text; copies it when either buffer is locked, and into the present block
    /// when the other is empty.
    CString& operator=(const CString& other);
    /// As above, but takes the text over where it would have been shared.
    // Copying may raise: NOLINTNEXTLINE(bugprone-exception-escape,performance-noexcept-*)
    CString& operator=(CString&& other);
    /// Copies a NUL-terminated text into the present block when that is unshared and large enough.
    CString& operator=(const char* text);
    /// Copies one character; a NUL is stored as a text of length 1, unchecked on purpose.
    CString& operator=(char ch);

    /// @return the NUL-terminated characters.
    operator const char*() const { return m_pchData; }
    /// @return the length in bytes.
    int GetLength() const { return GetData()->dataLength; }
    /// @return whether the length is 0.
    bool IsEmpty() const { return GetLength() == 0; }
    /// @return how many characters the block has room for.
    int GetAllocLength() const { return GetData()->allocLength; }
    /// @return the block's header; it belongs to the block.
    CStringData* GetData() const { return reinterpret_cast<CStringData*>(m_pchData) - 1; }
    /// @return the byte at `index`. Requires: 0 <= index <= length.
    char GetAt(int index) const {
        assert(index >= 0 && index <= GetLength());
        return m_pchData[index];
    }
    /// The same as `GetAt`.
    char operator[](int index) const { return GetAt(index); }
    /// Stores `ch` at `index`. Requires: 0 <= index < length.
    void SetAt(int index, char ch);

    /// @return what `strcmp` says of this text and `text`.
    int Compare(const char* text) const;
    /// @return what `_stricmp` says of this text and `text`: ASCII letters are folded, no others.
    int CompareNoCase(const char* text) const;

    // Searches give a zero-based index, or -1 when there is none, and end at the first NUL. A start
    // outside the text finds nothing.

    /// First `ch` at or behind `start`; a NUL is found at the text's end.
    int Find(char ch, int start = 0) const;
    /// First `sub` at or behind `start`.
    int Find(const char* sub, int start = 0) const;
    /// Last `ch`.
    int ReverseFind(char ch) const;
    /// First byte at or behind `start` that is in `set`.
    int FindOneOf(const char* set, int start = 0) const;

    // Parts of the text, each a fresh copy in a block of its own size. Arguments out of range are
    // clamped.

    /// `count` bytes from `first`.
    CString Mid(int first, int count) const;
    /// All bytes from `first`.
    CString Mid(int first) const;
    /// The first `count` bytes.
    CString Left(int count) const;
    /// The last `count` bytes.
    CString Right(int count) const;
    /// The leading run of bytes that are in `set`.
    CString SpanIncluding(const char* set) const;
    /// The leading run of bytes that are not in `set`.
    CString SpanExcluding(const char* set) const;

    /// Converts to upper case by the C library's current locale.
    void MakeUpper();
    /// Converts to lower case by the C library's current locale.
    void MakeLower();
    /// Unshares the text and leaves it as it is; kept so on purpose.
    void MakeReverse() { CopyBeforeWrite(); }
    /// Replaces every byte equal to `oldChar`, behind embedded NULs too.
    /// @return how many were replaced.
    int Replace(char oldChar, char newChar);
    /// Replaces every occurrence of `oldText`, behind embedded NULs too; what was inserted is not
    /// searched again. An empty `oldText` changes nothing. @return how many were replaced.
    int Replace(const char* oldText, const char* newText);
    /// Removes leading white space.
    void TrimLeft();
    /// Removes trailing white space.
    void TrimRight();
    /// Makes the text empty and gives its block up; a locked block is retained.
    void Empty();

    /// Appends a text.
    CString& operator+=(const char* text);
    /// Appends a text, which may be this one.
    CString& operator+=(const CString& text);
    /// Appends one character; a NUL is ignored.
    CString& operator+=(char ch);

    /// Formats by the rules of `printf` into a buffer whose size is estimated beforehand; a longer
    /// result is cut at the estimate. Two size letters ("%lld", "%zu") are beyond the estimate,
    /// which then counts little more than the conversion's own letters.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// As above with the arguments as a list, which is left for the caller to end.
    void FormatV(const char* format, va_list args) __attribute__((format(printf, 2, 0)));

    /// Makes room for `count` characters in a block that nobody shares and retains the text.
    /// @return the characters: `count` of them may be written, with a terminator behind, and then
    /// `ReleaseBuffer` called. Of an empty text with a count of 0 nothing may be written, not even
    /// a terminator: it has no block of its own.
    char* GetBuffer(int count);
    /// Ends the writing that `GetBuffer` began: the text is now `length` bytes long, or ends at its
    /// first NUL when `length` is -1. A length beyond the room counts as the room.
    void ReleaseBuffer(int length = -1);
    /// As `GetBuffer`, and sets the length to `length` at once. @return the characters.
    char* GetBufferSetLength(int length);
    /// Moves the text into a block of exactly its length.
    void FreeExtra();
    /// Locks the text: from now on it is copied, never shared. @return the characters.
    char* LockBuffer();
    /// Lets a locked text be shared again. A text that is shared gets a block of its own first, for
    /// which there may be no memory.
    void UnlockBuffer();

    /// @return `a` followed by `b` in a new block; a NUL character counts as a character. Two empty
    /// texts give the empty record.
    friend CString operator+(const CString& a, const CString& b);
    friend CString operator+(const CString& a, const char* b);
    friend CString operator+(const char* a, const CString& b);
    friend CString operator+(const CString& a, char b);
    friend CString operator+(char a, const CString& b);

    /// Texts compare as by `Compare`, never as pointers.
    friend bool operator==(const CString& a, const CString& b) { return a.Compare(b) == 0; }
    friend bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
        return a.Compare(b) <=> 0;
    }
    friend std::strong_ordering operator<=>(const CString& a, const char* b) {
        return a.Compare(b) <=> 0;
    }

  private:
    void Init();
    bool IsNil() const;
    static long RefCount(const CStringData* data);
    static std::size_t SafeStrlen(const char* text);
    void SetLength(std::size_t length);

    void AllocBuffer(std::size_t length);
    void Release();
    static void Release(CStringData* data);
    void Detach(std::size_t capacity);
    void CopyBeforeWrite();
    CStringData* AllocBeforeWrite(std::size_t length);
    void AllocCopy(CString& dest, std::size_t count, std::size_t index, std::size_t extra) const;
    void AssignCopy(std::size_t length, const char* text);
    void ConcatCopy(std::size_t length1, const char* text1, std::size_t length2, const char* text2);
    void ConcatInPlace(std::size_t length, const char* text);

    char* m_pchData;
};

/// What every empty `CString` points into: a header and the terminator behind it.
struct CStringEmptyRecord {
    CString::CStringData header;
    char text;
};

/// The one empty record. Constant: no thread may write it.
extern const CStringEmptyRecord rgInitData;
/// Its header and its characters.
extern const CString::CStringData* const afxDataNil;
extern const char* const afxPchNil;
/// The empty text of assignments.
extern const char afxChNil;

/// @return a reference to `afxPchNil`.
const char* const& AfxGetEmptyString();

// The record is constant; the pointer to it loses that only to fit the member, and every writer
// asks IsNil() or finds no room before it writes.
inline void CString::Init() { m_pchData = const_cast<char*>(&rgInitData.text); }

inline bool CString::IsNil() const { return m_pchData == &rgInitData.text; }

// Order of the count. Up: whoever copies already holds the block, so nothing needs ordering. Down:
// an owner's last reads of the text must come before the block is freed or written by another,
// so the decrement releases and the reader of the count acquires. A count of 1 read that way stays
// 1, for only an owner can raise it.
inline long CString::RefCount(const CStringData* data) {
    return __atomic_load_n(&data->refCount, __ATOMIC_ACQUIRE);
}

inline void CString::SetLength(std::size_t length) {
    if (IsNil()) return;
    GetData()->dataLength = static_cast<int>(length);
    m_pchData[length] = '\0';
}

inline void CString::CopyBeforeWrite() {
    const CStringData* const data = GetData();
    if (RefCount(data) >= 2) Detach(static_cast<std::size_t>(data->dataLength));
}
