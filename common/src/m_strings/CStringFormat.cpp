// CString's formatting: reserve what the estimate says, then write no more than that.

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "CString.h"
#include "FormatEstimate.h"
#include "PlainFormat.h"
#include "PrintfArguments.h"

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::FormatV(const char* format, va_list args) {
    if (format == nullptr) format = "";
    const std::size_t own = IsNil() ? 0 : static_cast<std::size_t>(GetAllocLength()) + 1;
    PlainFormat plain;
    PrintfArguments taken(format, args, m_pchData, own);
    const bool isPlain = plain.Read(format, args);
    const std::size_t estimate = isPlain ? plain.Estimate() : EstimateFormat(format, taken);

    if ((format >= m_pchData && format < m_pchData + own) ||
        (isPlain ? plain.TookOwnText(m_pchData, own) : taken.TookOwnText())) {
        CString text;
        text.FormatV(format, args);
        GetBuffer(static_cast<int>(estimate));
        AssignCopy(static_cast<std::size_t>(text.GetLength()), text);
        return;
    }

    CStringData* const old =
        AllocBeforeWrite(std::max(estimate, static_cast<std::size_t>(GetLength())));
    if (isPlain) {
        SetLength(static_cast<std::size_t>(plain.Write(m_pchData) - m_pchData));
    } else {
        const std::size_t room = IsNil() ? 0 : estimate + 1;
        const bool written = vsnprintf(room == 0 ? nullptr : m_pchData, room, format, args) >= 0;
        SetLength(written ? strnlen(m_pchData, estimate) : 0);
    }
    Release(old);
}
