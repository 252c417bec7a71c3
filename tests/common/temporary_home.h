#pragma once

/// A home folder of its own for each test, for programs that run in the sandbox.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TemporaryHome : public testing::Test {
  protected:
    TemporaryHome() {
        char name[] = "/tmp/home-XXXXXX";
        m_home = mkdtemp(name);
        setenv("HOME", m_home.c_str(), 1);
    }
    ~TemporaryHome() override { std::filesystem::remove_all(m_home); }

    const std::string& home() const { return m_home; }
    std::string settingsFolder() const { return m_home + "/Library/Zerva"; }
    std::string settingsPath() const { return settingsFolder() + "/zerva.conf"; }

    void makeLibrary() const { std::filesystem::create_directory(m_home + "/Library"); }

    /// Gives the settings file these bytes.
    void writeSettings(const std::string& bytes) const {
        std::filesystem::create_directories(settingsFolder());
        std::ofstream(settingsPath(), std::ios::binary) << bytes;
    }

    std::string readSettings() const {
        std::ifstream file(settingsPath(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static unsigned int modeOf(const std::string& path) {
        struct stat status {};
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777u : 0;
    }

  private:
    std::string m_home;
};
