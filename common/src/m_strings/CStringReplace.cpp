// Replacing text by text. The occurrences are counted first, so the result is built in one pass
// from left to right into room that is known to be enough.

#include <algorithm>
#include <cstring>
#include <functional>

#include "CString.h"

namespace {

struct Text {
    const char* data;
    std::size_t length;
};

// Calls `onMatch` for each occurrence of `what` in `in`, left to right. strstr stops at a NUL, so
// the text is walked by its NUL-terminated segments; `in` itself ends in a NUL.
template <typename OnMatch>
void forEachMatch(Text in, Text what, OnMatch onMatch) {
    const char* const end = in.data + in.length;
    for (const char* at = in.data; at < end;) {
        if (const char* const match = strstr(at, what.data)) {
            onMatch(match);
            at = match + what.length;
        } else {
            at += strlen(at) + 1;
        }
    }
}

std::size_t countMatches(Text in, Text what) {
    std::size_t count = 0;
    forEachMatch(in, what, [&count](const char*) { ++count; });
    return count;
}

// Writes `from` to `to` with every `what` as `by`. Both may stand in one block as long as the
// writing never overtakes the reading.
void writeReplaced(char* to, Text from, Text what, Text by) {
    const char* copied = from.data;
    forEachMatch(from, what, [&](const char* match) {
        const std::size_t between = static_cast<std::size_t>(match - copied);
        memmove(to, copied, between);
        to += between;
        if (by.length != 0) memcpy(to, by.data, by.length);
        to += by.length;
        copied = match + what.length;
    });
    memmove(to, copied, static_cast<std::size_t>(from.data + from.length - copied));
}

bool standsIn(const char* text, const char* first, std::size_t length) {
    return !std::less<>()(text, first) && !std::less<>()(first + length, text);
}

}  // namespace

int CString::Replace(const char* oldText, const char* newText) {
    const Text what{oldText, SafeStrlen(oldText)};
    const Text by{newText, SafeStrlen(newText)};
    if (what.length == 0) return 0;

    CStringData* const data = GetData();
    const Text from{m_pchData, static_cast<std::size_t>(data->dataLength)};
    const std::size_t count = countMatches(from, what);
    if (count == 0) return 0;
    const std::size_t length = from.length - what.length * count + by.length * count;

    const bool shared = RefCount(data) >= 2;
    const std::size_t room = shared ? from.length : static_cast<std::size_t>(data->allocLength);
    if (standsIn(oldText, m_pchData, room) || standsIn(newText, m_pchData, room)) {
        return Replace(CString(oldText), CString(newText));
    }
    if (shared || length > room) {
        AllocBuffer(std::max(length, room));
        writeReplaced(m_pchData, from, what, by);
        SetLength(length);
        Release(data);
        return static_cast<int>(count);
    }
    // A growing text is first moved to the end of its room, so that the writing, which ends within
    // the room, never overtakes the reading; a shrinking one stays behind by itself.
    Text source = from;
    if (by.length > what.length) {
        char* const moved = m_pchData + room - from.length;
        memmove(moved, m_pchData, from.length + 1);
        source.data = moved;
    }
    writeReplaced(m_pchData, source, what, by);
    SetLength(length);
    return static_cast<int>(count);
}
