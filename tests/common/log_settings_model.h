#pragma once

/// The settings file over again, slow and plain, for the tests to compare with: a file is a text,
/// and its lines are looked at one character after the other.

#include <string>

struct SettingsModel {
    std::string bytes;

    unsigned int level() const;
    unsigned int moduleLevel(const std::string& module) const;
    unsigned int rotationSize() const;
    void setLevel(int level);
};
