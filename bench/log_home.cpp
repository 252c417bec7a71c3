#include "log_home.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

}  // namespace

const LogHome& LogHome::get() {
    static const LogHome home;
    return home;
}

LogHome::LogHome() : m_path(std::filesystem::temp_directory_path() / "log_bench-XXXXXX") {
    std::thread([] {}).join();
    if (mkdtemp(m_path.data()) == nullptr) fail("mkdtemp");
    setenv("HOME", m_path.c_str(), 1);
    std::filesystem::create_directories(logs());
    std::filesystem::create_directories(m_path + "/Library/Zerva");
    std::ofstream(m_path + "/Library/Zerva/zerva.conf")
        << "default_log_level=63\nlog_file_size=2147483647\n";
}

LogHome::~LogHome() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

Emptied::Emptied(std::string path) : m_path(std::move(path)) {}

Emptied::~Emptied() {
    std::error_code ignored;
    std::filesystem::resize_file(m_path, 0, ignored);
}

void Emptied::empty(benchmark::State& state) {
    state.PauseTiming();
    std::filesystem::resize_file(m_path, 0);
    m_size = 0;
    state.ResumeTiming();
}

BareFile::BareFile(const std::string& name)
    : m_path(LogHome::get().logs() + name),
      m_descriptor(open(m_path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    if (m_descriptor < 0) fail(m_path.c_str());
}

BareFile::~BareFile() { close(m_descriptor); }

void BareFile::write(const std::string& line) const {
    if (::write(m_descriptor, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        fail(m_path.c_str());
    }
}
