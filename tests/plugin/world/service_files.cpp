#include "service_files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr char kReport[] = "/tmp/stand-in.report";
constexpr char kInput[] = "/tmp/stand-in.input";

}  // namespace

void writeFile(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writePidFile(const std::string& text) { writeFile(kPidFile, text); }

void installService(const std::string& orders) {
    removeServiceFiles();
    fs::create_directories(fs::path(kServiceProgram).parent_path());
    fs::create_symlink(ZERVA_STAND_IN, kServiceProgram);
    setenv("ZERVA_STAND_IN_ORDERS", orders.c_str(), 1);
    setenv("ZERVA_STAND_IN_REPORT", kReport, 1);
    setenv("ZERVA_STAND_IN_INPUT", kInput, 1);
}

void installServiceFile(const std::string& text, unsigned mode) {
    removeServiceFiles();
    writeFile(kServiceProgram, text);
    fs::permissions(kServiceProgram, static_cast<fs::perms>(mode));
}

std::string serviceReport() { return readFile(kReport); }

std::string serviceInput() { return readFile(kInput); }

void removeServiceFiles() {
    for (const char* file : {kServiceProgram, kReport, kInput}) fs::remove(file);
    fs::remove_all(kPidFile);
}
