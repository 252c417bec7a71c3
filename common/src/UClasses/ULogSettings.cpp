#include "ULogSettings.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>

#include "CString.h"
#include "ScanNumber.h"
#include "UserFolders.h"

namespace {

constexpr unsigned int kHighestLevel = 63;
constexpr unsigned int kNoLevel = ~0u;  // of a module that the file does not name
constexpr unsigned int kRotationSize = 5 * 1024 * 1024;

constexpr char kDefaultLevelKey[] = "default_log_level=";
constexpr char kRotationSizeKey[] = "log_file_size";

// Components and users have this text on their disks, its spelling included.
constexpr char kTemplate[] =
    "##########################################################################\n"
    "# This file contain Zerva client components settings\n"
    "# \n"
    "# \n"
    "# BASIC     31   Value use to provide basic logs which include user friendly messages, "
    "warnings, and errors.\n"
    "#                Valid values are in the range 0 to 31, the highest setting is 31.\n"
    "# EXTENDED  63   Set to provide extended log level.\n"
    "#                Valid values are in the range of 32 to 63, the highest setting is 63.\n"
    "##########################################################################\n\n"
    "\n\n"
    "# default log level for all zerva components\n"
    "default_log_level=%d\n\n"
    "\n\n"
    "# nevo core log level. This setting is used to override the default log level set by "
    "default_log_level setting for nevo component\n"
    "#nevo_log_level=63\n\n"
    "\n\n"
    "# nevo NPAPI plugin log level. This setting is used to override the default log level set by "
    "default_log_level setting for nevo NPAPI plugin\n"
    "#nevo_plugin_log_level=63\n\n"
    "\n\n"
    "# endpoint secutity NPAPI plugin. This setting is used to override the default log level set "
    "by default_log_level setting for endpoint secutity NPAPI plugin\n"
    "#ovra_plugin_log_level=63\n\n"
    "\n\n"
    "# TesselClient. This setting is used to override the default log level set by "
    "default_log_level setting for TesselClient application\n"
    "#tessel_client_log_level=63\n\n";

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

CString settingsPath(bool createFolder) { return getZervaFolderPath(createFolder) + "/zerva.conf"; }

// A file made here is the user's alone from the start; a pipe in its place holds up nobody.
File openFile(const CString& path, int flags, const char* mode) {
    const int descriptor = open(path, flags | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0) return nullptr;
    File file(fdopen(descriptor, mode));
    if (file) return file;
    close(descriptor);
    // The file is there: it must not be taken for a missing one, and made anew.
    throw std::bad_alloc();
}

File openForReading() { return openFile(settingsPath(false), O_RDONLY, "r"); }

// The lines of a settings file, a longer one in pieces.
class Lines {
  public:
    explicit Lines(std::FILE* file) : m_file(file) {}

    // Reads the next line; false at the end of the file.
    bool next() {
        return std::fgets(m_text.data(), static_cast<int>(m_text.size()), m_file) != nullptr;
    }

    // What stands behind `key` when the line begins with it, else null.
    const char* valueOf(const char* key) const {
        const std::size_t length = std::strlen(key);
        return std::strncmp(m_text.data(), key, length) == 0 ? m_text.data() + length : nullptr;
    }

  private:
    std::FILE* m_file;
    std::array<char, 256> m_text;
};

unsigned int numberOr(const char* text, unsigned int otherwise) {
    const auto number = SScanInt(text);
    return number ? static_cast<unsigned int>(*number) : otherwise;
}

// Overwrites the first default line in place, or appends one.
void replaceDefaultLevel(std::FILE* file, int level) {
    Lines lines(file);
    // Where the line begins; its length as a text would not do, for it may hold NULs.
    off_t start = ftello(file);
    while (lines.next()) {
        if (lines.valueOf(kDefaultLevelKey) != nullptr) {
            fseeko(file, start, SEEK_SET);
            std::fprintf(file, "%s%d\n", kDefaultLevelKey, level);
            return;
        }
        start = ftello(file);
    }
    fseeko(file, 0, SEEK_END);
    std::fprintf(file, "\n%s%d\n", kDefaultLevelKey, level);
}

}  // namespace

unsigned int ULogSettings::getLogLevel() try {
    const File file = openForReading();
    if (!file) {
        setLogLevel(kHighestLevel, 0);
        return kHighestLevel;
    }
    for (Lines lines(file.get()); lines.next();) {
        if (const char* value = lines.valueOf(kDefaultLevelKey)) {
            return numberOr(value, kHighestLevel);
        }
    }
    return kHighestLevel;
} catch (const std::exception&) {
    return kHighestLevel;
}

unsigned int ULogSettings::getModuleLogLevel(const char* module) try {
    const File file = openForReading();
    if (!file) {
        setModuleLogLevel(module, kHighestLevel);
        return kHighestLevel;
    }
    const CString key = module != nullptr ? CString(module) + "_log_level=" : CString();
    unsigned int defaultLevel = kHighestLevel;
    unsigned int moduleLevel = kNoLevel;
    for (Lines lines(file.get()); lines.next();) {
        if (const char* value = lines.valueOf(kDefaultLevelKey)) {
            defaultLevel = numberOr(value, kHighestLevel);
        }
        if (const char* value = key.IsEmpty() ? nullptr : lines.valueOf(key)) {
            moduleLevel = numberOr(value, kNoLevel);
        }
    }
    return moduleLevel != kNoLevel ? moduleLevel : defaultLevel;
} catch (const std::exception&) {
    return kHighestLevel;
}

void ULogSettings::setLogLevel(unsigned int level, unsigned int /*reserved*/) try {
    if (geteuid() == 0) return;
    const CString path = settingsPath(true);
    const int printed = static_cast<int>(level);
    if (const File file = openFile(path, O_RDWR, "r+")) {
        replaceDefaultLevel(file.get(), printed);
    } else if (const File made = openFile(path, O_WRONLY | O_CREAT | O_TRUNC, "w")) {
        std::fprintf(made.get(), kTemplate, printed);
    }
    setFilePermission(path);
} catch (const std::exception&) {
    // No memory: the settings stay as they are.
}

// The default level, whatever the module: kept on purpose.
void ULogSettings::setModuleLogLevel(const char* /*module*/, unsigned int level) {
    setLogLevel(level, 0);
}

unsigned int ULogSettings::getFileRotationSize() try {
    const File file = openForReading();
    if (!file) return kRotationSize;
    for (Lines lines(file.get()); lines.next();) {
        if (const char* value = lines.valueOf(kRotationSizeKey)) {
            const bool separated = *value != '\0';
            return separated ? numberOr(value + 1, kRotationSize) : kRotationSize;
        }
    }
    return kRotationSize;
} catch (const std::exception&) {
    return kRotationSize;
}
