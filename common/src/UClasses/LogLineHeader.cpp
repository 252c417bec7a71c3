#include "LogLineHeader.h"

#include <charconv>
#include <cstring>

#include "SharedName.h"

namespace {

char* append(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

char* append(char* out, int number) { return std::to_chars(out, out + 11, number).ptr; }

}  // namespace

bool LogLineHeader::stamp(int processId, const CString& moduleName) {
    const LogMoment now;
    if (!now) return false;
    char* end = append(m_text.data(), now.dateAndTime());
    end = append(append(end, ", "), processId);
    // The low 32 bits of the thread's id, signed: kept as published.
    end = append(append(end, ","), static_cast<int>(logThreadId()));
    end = append(end, ",");
    if (char* const nameEnd = copySharedName(moduleName, end, kMostName)) {
        end = nameEnd;
    } else {
        m_longName = sharedName(moduleName);
    }
    m_length = static_cast<std::size_t>(end - m_text.data());
    return true;
}
