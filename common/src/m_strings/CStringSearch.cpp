// What CString answers without changing: comparisons, searches, parts of the text.

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "CString.h"
#include "StringCase.h"

namespace {

const char* textOrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

int CString::Compare(const char* text) const { return strcmp(m_pchData, textOrEmpty(text)); }

int CString::CompareNoCase(const char* text) const { return _stricmp(m_pchData, text); }

int CString::Find(char ch, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    const char* const found = strchr(m_pchData + start, ch);
    return found == nullptr ? -1 : static_cast<int>(found - m_pchData);
}

int CString::Find(const char* sub, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    const char* const found = strstr(m_pchData + start, textOrEmpty(sub));
    return found == nullptr ? -1 : static_cast<int>(found - m_pchData);
}

int CString::ReverseFind(char ch) const {
    const char* const found = strrchr(m_pchData, ch);
    return found == nullptr ? -1 : static_cast<int>(found - m_pchData);
}

int CString::FindOneOf(const char* set, int start) const {
    if (start < 0 || start >= GetLength()) return -1;
    const char* const found = strpbrk(m_pchData + start, textOrEmpty(set));
    return found == nullptr ? -1 : static_cast<int>(found - m_pchData);
}

CString CString::Mid(int first, int count) const {
    const int length = GetLength();
    first = std::clamp(first, 0, length);
    count = std::clamp(count, 0, length - first);
    CString part;
    AllocCopy(part, static_cast<std::size_t>(count), static_cast<std::size_t>(first), 0);
    return part;
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
    const int length = GetLength();
    count = std::clamp(count, 0, length);
    return Mid(length - count, count);
}

CString CString::SpanIncluding(const char* set) const {
    return Left(static_cast<int>(strspn(m_pchData, textOrEmpty(set))));
}

CString CString::SpanExcluding(const char* set) const {
    return Left(static_cast<int>(strcspn(m_pchData, textOrEmpty(set))));
}
