// Runs a target over the files of a folder, each a test of its own: what a fuzzer has found once
// is looked at in every build, with any compiler.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_input.h"

namespace {

namespace fs = std::filesystem;

class Replay : public testing::Test {
  public:
    explicit Replay(fs::path file) : m_file(std::move(file)) {}

    void TestBody() override {
        std::ifstream file(m_file, std::ios::binary);
        ASSERT_TRUE(file.is_open());
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        FuzzInput input(bytes);
        fuzzOne(input);
    }

  private:
    fs::path m_file;
};

std::vector<fs::path> filesOf(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS\n", argv[0]);
        return 2;
    }
    const std::vector<fs::path> files = filesOf(argv[1]);
    if (files.empty()) {
        std::fprintf(stderr, "%s holds no inputs\n", argv[1]);
        return 2;
    }
    for (const fs::path& file : files) {
        testing::RegisterTest("Corpus", file.filename().c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, [file]() -> Replay* { return new Replay(file); });
    }
    return RUN_ALL_TESTS();
}
