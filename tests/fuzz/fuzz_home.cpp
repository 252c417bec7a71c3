#include "fuzz_home.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

class TemporaryFolder {
  public:
    TemporaryFolder() : m_path(fs::temp_directory_path() / "fuzz-XXXXXX") {
        if (mkdtemp(m_path.data()) == nullptr) throw std::runtime_error("no temporary folder");
        fs::create_directory(m_path + "/Library");
        setenv("HOME", m_path.c_str(), 1);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return m_path; }

  private:
    std::string m_path;
};

}  // namespace

const std::string& fuzzHome() {
    static const TemporaryFolder folder;
    return folder.path();
}

void writeFile(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
