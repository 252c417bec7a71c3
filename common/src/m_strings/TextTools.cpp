#include "TextTools.h"

#include <climits>
#include <cstddef>
#include <cwchar>

namespace {

void trimSpace(CString& text) {
    text.TrimLeft();
    text.TrimRight();
}

}  // namespace

int SplitString(const char* text, CString& left, CString& right, char sep, bool noTrim,
                bool fromRight) {
    const CString whole(text);  // which may be one of the two that are stored
    left = whole;
    right = "";
    if (whole.IsEmpty()) return -1;
    const int at = fromRight ? whole.ReverseFind(sep) : whole.Find(sep);
    if (at >= 0) {
        right = whole.Mid(at + 1);
        left = whole.Left(at);
    }
    if (!noTrim) {
        trimSpace(left);
        trimSpace(right);
    }
    return at;
}

bool ParseNameValue(const char* text, CString& name, CString& value) {
    const CString whole(text);
    const int at = whole.Find('=');
    if (at <= 0) return false;
    name = whole.Left(at);
    value = whole.Mid(at + 1);
    trimSpace(name);
    trimSpace(value);
    return true;
}

CString TrimLeft(const CString& s, char ch, unsigned int max) {
    int start = 0;
    while (start < s.GetLength() && static_cast<unsigned int>(start) < max && s[start] == ch) {
        ++start;
    }
    return start == 0 ? s : s.Mid(start);
}

CString TrimRight(const CString& s, char ch, unsigned int max) {
    int end = s.GetLength();
    while (end > 0 && static_cast<unsigned int>(s.GetLength() - end) < max && s[end - 1] == ch) {
        --end;
    }
    return end == s.GetLength() ? s : s.Left(end);
}

CString Trim(const CString& s, char left, char right, unsigned int max) {
    return TrimRight(TrimLeft(s, left, max), right != '\0' ? right : left, max);
}

CString TrimOnce(const CString& s, char left, char right) { return Trim(s, left, right, 1); }

CString stripCR(const char* text) {
    CString result(text);
    result.Replace("\r", "");
    result.Replace("\n", "");
    return result;
}

CString SReplace(const CString& s, const char* oldText, const char* newText) {
    CString result = s;
    result.Replace(oldText, newText);
    return result;
}

CString SReplace(const CString& s, char oldChar, char newChar) {
    CString result = s;
    result.Replace(oldChar, newChar);
    return result;
}

unsigned int wcsreplace(wchar_t* text, const wchar_t* oldText, const wchar_t* newText) {
    if (text == nullptr || oldText == nullptr || *oldText == L'\0') return 0;
    if (newText == nullptr) newText = L"";
    const std::size_t oldLength = std::wcslen(oldText);
    const std::size_t newLength = std::wcslen(newText);
    wchar_t* match = std::wcsstr(text, oldText);
    // One occurrence is enough to make the result longer, and then nothing is stored.
    if (match != nullptr && newLength > oldLength) return UINT_MAX;

    wchar_t* const end = text + std::wcslen(text);
    wchar_t* to = text;
    const wchar_t* from = text;
    const auto copyTo = [&to, &from](const wchar_t* limit) {
        const auto count = static_cast<std::size_t>(limit - from);
        std::wmemmove(to, from, count);
        to += count;
        from = limit;
    };
    while (match != nullptr) {
        copyTo(match);
        std::wmemcpy(to, newText, newLength);
        to += newLength;
        from += oldLength;
        const auto hidden = static_cast<std::ptrdiff_t>(oldLength - newLength);
        match = end - from > hidden ? std::wcsstr(const_cast<wchar_t*>(from) + hidden, oldText)
                                    : nullptr;
    }
    copyTo(end);
    *to = L'\0';
    return 0;
}
