#include "CString.h"

#include <climits>
#include <cstring>
#include <new>
#include <stdexcept>

#include "interlocked.h"

// The empty record serves all threads at once and is constant:
// 1. refCount is never counted: Release() knows the record by its address, and a count below zero
//    makes every copy of an empty text a copy, not a share.
// 2. The lengths stay 0: SetLength() leaves the record alone, and no text fits into it.
// 3. The terminator is never written: each writer either has characters to write, for which the
//    record has no room, or goes through SetLength().
// 4. LockBuffer() and UnlockBuffer() pass it by: its count is that of a locked block already.
constinit const CStringEmptyRecord rgInitData{{-1, 0, 0}, '\0'};
static_assert(offsetof(CStringEmptyRecord, text) == sizeof(CString::CStringData));

constinit const CString::CStringData* const afxDataNil = &rgInitData.header;
constinit const char* const afxPchNil = &rgInitData.text;
constinit const char afxChNil = '\0';

const char* const& AfxGetEmptyString() { return afxPchNil; }

std::size_t CString::SafeStrlen(const char* text) { return text == nullptr ? 0 : strlen(text); }

// Points the object at a new block, or at the empty record; the present block stays the caller's
// to release.
void CString::AllocBuffer(std::size_t length) {
    if (length == 0) {
        Init();
        return;
    }
    if (length > INT_MAX) throw std::length_error("CString: text of 2 GiB or more");
    void* const block = ::operator new[](sizeof(CStringData) + length + 1);
    const int size = static_cast<int>(length);
    m_pchData = (new (block) CStringData{1, size, size})->data();
    m_pchData[length] = '\0';
}

void CString::Release() {
    CStringData* const old = GetData();
    Init();
    Release(old);
}

void CString::Release(CStringData* data) {
    if (data == afxDataNil) return;
    // A sole owner, or the owner of a locked block, has nobody to race with: no locked step.
    if (RefCount(data) <= 1 || InterlockedDecrement(&data->refCount) < 1) ::operator delete[](data);
}

// Moves the text into a block of the object's own: the one place where a shared text is left.
void CString::Detach(std::size_t capacity) {
    CStringData* const old = GetData();
    AllocBuffer(capacity);
    if (!IsNil()) {
        memcpy(m_pchData, old->data(), static_cast<std::size_t>(old->dataLength));
        SetLength(static_cast<std::size_t>(old->dataLength));
    }
    Release(old);
}

// Makes room for a new text of `length` bytes. Returns the block that was left for a new one, still
// held because the new text may stand in it, or the empty record when the present block serves.
CString::CStringData* CString::AllocBeforeWrite(std::size_t length) {
    CStringData* const old = GetData();
    if (RefCount(old) < 2 && length <= static_cast<std::size_t>(old->allocLength)) {
        return const_cast<CStringData*>(afxDataNil);
    }
    AllocBuffer(length);
    return old;
}

void CString::AllocCopy(CString& dest, std::size_t count, std::size_t index,
                        std::size_t extra) const {
    CStringData* const old = dest.GetData();
    dest.AllocBuffer(count + extra);
    if (count != 0) memcpy(dest.m_pchData, m_pchData + index, count);
    Release(old);
}

void CString::AssignCopy(std::size_t length, const char* text) {
    CStringData* const old = AllocBeforeWrite(length);
    if (length != 0 && text != m_pchData) memmove(m_pchData, text, length);
    SetLength(length);
    Release(old);
}

void CString::ConcatCopy(std::size_t length1, const char* text1, std::size_t length2,
                         const char* text2) {
    if (length1 + length2 == 0) return;
    AllocBuffer(length1 + length2);
    if (length1 != 0) memcpy(m_pchData, text1, length1);
    if (length2 != 0) memcpy(m_pchData + length1, text2, length2);
}

void CString::ConcatInPlace(std::size_t length, const char* text) {
    if (length == 0) return;
    CStringData* const old = GetData();
    const std::size_t oldLength = static_cast<std::size_t>(old->dataLength);
    const std::size_t newLength = oldLength + length;
    if (newLength <= static_cast<std::size_t>(old->allocLength) && RefCount(old) < 2) {
        memmove(m_pchData + oldLength, text, length);
        m_pchData[newLength] = '\0';
        old->dataLength = static_cast<int>(newLength);
        return;
    }
    ConcatCopy(oldLength, old->data(), length, text);
    Release(old);
}

CString::CString(const CString& other) : m_pchData(other.m_pchData) {
    if (IsNil()) return;
    CStringData* const data = GetData();
    if (RefCount(data) < 0) {
        Init();
        AssignCopy(static_cast<std::size_t>(data->dataLength), data->data());
    } else {
        InterlockedIncrement(&data->refCount);
    }
}

CString::CString(const char* text) {
    Init();
    ConcatCopy(SafeStrlen(text), text, 0, nullptr);
}

CString::CString(const char* text, int length) {
    Init();
    if (text != nullptr && length > 0) {
        ConcatCopy(static_cast<std::size_t>(length), text, 0, nullptr);
    }
}

CString::CString(char ch, int count) {
    Init();
    if (count < 1) return;
    AllocBuffer(static_cast<std::size_t>(count));
    memset(m_pchData, ch, static_cast<std::size_t>(count));
}

// A text is the same as itself by its block: NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
CString& CString::operator=(const CString& other) {
    if (m_pchData == other.m_pchData) return *this;
    CStringData* const old = GetData();
    CStringData* const data = other.GetData();
    if ((RefCount(old) < 0 && !IsNil()) || RefCount(data) < 0) {
        AssignCopy(static_cast<std::size_t>(data->dataLength), data->data());
    } else {
        InterlockedIncrement(&data->refCount);
        m_pchData = data->data();
        Release(old);
    }
    return *this;
}

// A locked buffer is copied:
// NOLINTNEXTLINE(bugprone-exception-escape,performance-noexcept-move-constructor)
CString& CString::operator=(CString&& other) {
    if (m_pchData == other.m_pchData) return *this;
    CStringData* const old = GetData();
    if ((RefCount(old) < 0 && !IsNil()) || RefCount(other.GetData()) < 0) return *this = other;
    m_pchData = other.m_pchData;
    other.Init();
    Release(old);
    return *this;
}

CString& CString::operator=(const char* text) {
    if (text != m_pchData) AssignCopy(SafeStrlen(text), text);
    return *this;
}

CString& CString::operator=(char ch) {
    AssignCopy(1, &ch);
    return *this;
}

CString& CString::operator+=(const char* text) {
    ConcatInPlace(SafeStrlen(text), text);
    return *this;
}

CString& CString::operator+=(const CString& text) {
    ConcatInPlace(static_cast<std::size_t>(text.GetLength()), text.m_pchData);
    return *this;
}

CString& CString::operator+=(char ch) {
    if (ch != '\0') ConcatInPlace(1, &ch);
    return *this;
}

CString operator+(const CString& a, const CString& b) {
    CString sum;
    sum.ConcatCopy(static_cast<std::size_t>(a.GetLength()), a,
                   static_cast<std::size_t>(b.GetLength()), b);
    return sum;
}

CString operator+(const CString& a, const char* b) {
    CString sum;
    sum.ConcatCopy(static_cast<std::size_t>(a.GetLength()), a, CString::SafeStrlen(b), b);
    return sum;
}

CString operator+(const char* a, const CString& b) {
    CString sum;
    sum.ConcatCopy(CString::SafeStrlen(a), a, static_cast<std::size_t>(b.GetLength()), b);
    return sum;
}

CString operator+(const CString& a, char b) {
    CString sum;
    sum.ConcatCopy(static_cast<std::size_t>(a.GetLength()), a, 1, &b);
    return sum;
}

CString operator+(char a, const CString& b) {
    CString sum;
    sum.ConcatCopy(1, &a, static_cast<std::size_t>(b.GetLength()), b);
    return sum;
}
