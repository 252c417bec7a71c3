// CString's changes in place that take no new text; the new one of Replace has its own file.

#include <cctype>
#include <cstring>

#include "CString.h"
#include "StringCase.h"

namespace {

bool isSpace(char ch) { return isspace(static_cast<unsigned char>(ch)) != 0; }

}  // namespace

void CString::SetAt(int index, char ch) {
    assert(index >= 0 && index < GetLength());
    CopyBeforeWrite();
    m_pchData[index] = ch;
}

void CString::MakeUpper() {
    CopyBeforeWrite();
    _strupr(m_pchData);
}

void CString::MakeLower() {
    CopyBeforeWrite();
    _strlwr(m_pchData);
}

int CString::Replace(char oldChar, char newChar) {
    if (oldChar == newChar) return 0;
    CopyBeforeWrite();
    int count = 0;
    char* const end = m_pchData + GetLength();
    for (char* at = m_pchData; at != end; ++at) {
        if (*at == oldChar) {
            *at = newChar;
            ++count;
        }
    }
    return count;
}

void CString::TrimLeft() {
    CopyBeforeWrite();
    const char* first = m_pchData;
    while (isSpace(*first)) ++first;
    if (first == m_pchData) return;
    const std::size_t rest = static_cast<std::size_t>(m_pchData + GetLength() - first);
    memmove(m_pchData, first, rest);
    SetLength(rest);
}

void CString::TrimRight() {
    CopyBeforeWrite();
    std::size_t length = static_cast<std::size_t>(GetLength());
    while (length != 0 && isSpace(m_pchData[length - 1])) --length;
    SetLength(length);
}

void CString::Empty() {
    if (IsEmpty()) return;
    if (RefCount(GetData()) < 0) {
        *this = &afxChNil;
    } else {
        Release();
    }
}
