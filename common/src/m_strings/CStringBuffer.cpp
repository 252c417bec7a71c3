// CString's buffer access: reserving room, writing into it from outside, locking.

#include <algorithm>
#include <cstring>

#include "CString.h"

char* CString::GetBuffer(int count) {
    const CStringData* const data = GetData();
    if (RefCount(data) >= 2 || count > data->allocLength) {
        Detach(static_cast<std::size_t>(std::max(count, data->dataLength)));
    }
    return m_pchData;
}

void CString::ReleaseBuffer(int length) {
    CopyBeforeWrite();
    const std::size_t room = static_cast<std::size_t>(GetAllocLength());
    SetLength(length < 0 ? strnlen(m_pchData, room)
                         : std::min(static_cast<std::size_t>(length), room));
}

char* CString::GetBufferSetLength(int length) {
    length = std::max(length, 0);
    GetBuffer(length);
    SetLength(static_cast<std::size_t>(length));
    return m_pchData;
}

void CString::FreeExtra() {
    const CStringData* const data = GetData();
    if (data->dataLength != data->allocLength) Detach(static_cast<std::size_t>(data->dataLength));
}

char* CString::LockBuffer() {
    GetBuffer(0);
    if (!IsNil()) GetData()->refCount = -1;
    return m_pchData;
}

// A text that was never locked may be shared: setting the count of a shared block would free it
// under its other owners.
void CString::UnlockBuffer() {
    CopyBeforeWrite();
    if (!IsNil()) GetData()->refCount = 1;
}
