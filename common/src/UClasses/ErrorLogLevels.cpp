#include "ErrorLogLevels.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

#include "IUErrorLog.h"
#include "PriorityLine.h"

namespace {

constexpr int kPriorities[] = {1, 2, 48};
constexpr char kWrongParameter[] = "ERRORLOGLEVELx() wrong parameter";

// The C library also fails for reasons that no room mends, so the doubling ends somewhere.
constexpr std::size_t kMostRoom = 1 << 20;

// A text of a limited length. Failed formatting is tried again with twice the room; a text that is
// merely too long is cut.
class LevelText {
  public:
    __attribute__((format(printf, 2, 0))) LevelText(const char* format, va_list args) {
        char* room = m_first.data();
        std::size_t size = m_first.size();
        while (format != nullptr && room != nullptr && size <= kMostRoom) {
            va_list again;
            va_copy(again, args);
            const int length = vsnprintf(room, size, format, again);
            va_end(again);
            if (length >= 0) {
                m_text = room;
                return;
            }
            size *= 2;
            m_more.reset(new (std::nothrow) char[size]);
            room = m_more.get();
        }
    }

    const char* text() const { return m_text; }

  private:
    std::array<char, 2048> m_first;
    std::unique_ptr<char[]> m_more;
    const char* m_text = kWrongParameter;
};

__attribute__((format(printf, 2, 0))) void writeAt(int priority, const char* format, va_list args) {
    IUErrorLog* const log = errorLog;
    if (log == nullptr) return;
    const LevelText text(format, args);
    const PriorityLine line(priority, text.text());
    if (line.text() != nullptr) log->WriteLogItem(line.text());
}

bool isFiltered(int priority) {
    IUErrorLog* const log = errorLog;
    return log == nullptr || log->GetLogLevel() < priority;
}

}  // namespace

void ERRORLOGLEVEL0(const char* format, ...) {
    va_list args;
    va_start(args, format);
    writeAt(kPriorities[0], format, args);
    va_end(args);
}

void ERRORLOGLEVEL1(const char* format, ...) {
    if (isFiltered(kPriorities[1])) return;
    va_list args;
    va_start(args, format);
    writeAt(kPriorities[1], format, args);
    va_end(args);
}

void ERRORLOGLEVEL2(const char* format, ...) {
    if (isFiltered(kPriorities[2])) return;
    va_list args;
    va_start(args, format);
    writeAt(kPriorities[2], format, args);
    va_end(args);
}

void ERRORLOGLEVEL3(const char* /*format*/, ...) {}

void ERRORLOGLEVEL4(const char* /*format*/, ...) {}

void ERRORLOGLEVEL5(const char* /*format*/, ...) {}
