#include "log_file.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <iterator>

std::string fileHeader() {
    utsname system{};
    uname(&system);
    return fileRule() + "\nKernel version: " + system.version + "\nSystem: " + system.sysname +
           "\nRelease: " + system.release + "\nModel: " + system.machine +
           "\nNode name: " + system.nodename + "\n" + fileRule() + "\n";
}

std::vector<std::string> startUpItems(int level) {
    std::string program(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", program.data(), program.size());
    program.resize(static_cast<std::size_t>(length));
    std::vector<std::string> items = {
        "0,,,,  ",
        "0,,,,  =====================================",
        "0,,,,  Location: " + program,
        std::string("0,,,,  Locale: ") + setlocale(LC_ALL, nullptr),
        "0,,,,  =====================================",
        "0,,,,  ",
    };
    if (level >= 48) items.push_back("48,,,, current log level = " + std::to_string(level));
    return items;
}

namespace {

// What begins a line: 0 stands for any digit, h for the first of the hour's two characters.
constexpr char kMoment[] = "0000-00-00,h0:00:00:000, ";
constexpr std::size_t kMomentLength = sizeof kMoment - 1;

bool beginsWithMoment(const std::string& line) {
    if (line.size() < kMomentLength) return false;
    for (std::size_t i = 0; i < kMomentLength; ++i) {
        const char c = line[i];
        const bool fits = kMoment[i] == '0'   ? c >= '0' && c <= '9'
                          : kMoment[i] == 'h' ? c == ' ' || c == '1' || c == '2'
                                              : c == kMoment[i];
        if (!fits) return false;
    }
    return true;
}

// The number in front of `end`, taken off the rest of a line. It has no needless characters.
std::optional<long> takeNumber(std::string& rest, const std::string& end) {
    const std::string text = rest.substr(0, rest.find(end));
    if (text.empty() || text.size() > 11) return std::nullopt;
    const long number = std::atol(text.c_str());
    if (std::to_string(number) != text) return std::nullopt;
    rest.erase(0, text.size() + end.size());
    return number;
}

}  // namespace

std::optional<LogLine> parseLogLine(const std::string& line) {
    if (!beginsWithMoment(line)) return std::nullopt;
    std::string rest = line.substr(kMomentLength);
    const std::optional<long> process = takeNumber(rest, ",");
    const std::optional<long> thread = process ? takeNumber(rest, ",") : std::nullopt;
    const std::size_t module = rest.find(", ");
    if (!thread || module == std::string::npos) return std::nullopt;
    return LogLine{line.substr(11, 2), *process, *thread, rest.substr(0, module),
                   rest.substr(module + 2)};
}

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
