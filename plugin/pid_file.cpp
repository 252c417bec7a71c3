#include "pid_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <climits>

#include "nevo_service.h"
#include "unique_fd.h"

namespace {

// The characters of a file, one after the other.
class Characters {
  public:
    explicit Characters(int file) : m_file(file) { next(); }

    // The current character; -1 at the end of the file.
    int current() const { return m_current; }

    void next() {
        if (m_position == m_count) {
            m_count = read(m_file, m_block, sizeof m_block);
            m_position = 0;
        }
        m_current = m_count > 0 ? m_block[m_position++] : -1;
        if (m_count <= 0) m_position = m_count = 0;
    }

  private:
    int m_file;
    unsigned char m_block[64] = {};
    ssize_t m_count = 0;
    ssize_t m_position = 0;
    int m_current = -1;
};

int readNumber(Characters& text) {
    while (isspace(text.current())) text.next();
    const bool negative = text.current() == '-';
    if (negative || text.current() == '+') text.next();
    long long value = 0;
    for (; isdigit(text.current()); text.next()) {
        value = value * 10 + (text.current() - '0');
        if (value > INT_MAX) return negative ? INT_MIN : INT_MAX;
    }
    return static_cast<int>(negative ? -value : value);
}

}  // namespace

std::optional<int> readServicePid() {
    // Whoever put a named pipe in the file's place must not hold up the browser.
    const UniqueFd file(open(nevo::kPidFile, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file) return std::nullopt;
    Characters text(file.get());
    return readNumber(text);
}
