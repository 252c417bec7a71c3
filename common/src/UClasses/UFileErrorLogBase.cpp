#include "UFileErrorLogBase.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <clocale>
#include <cstring>
#include <new>

#include "LogLineHeader.h"
#include "SharedName.h"
#include "SystemFiles.h"
#include "ULogSettings.h"

namespace {

constexpr unsigned int kRotationSize = 5 * 1024 * 1024;
constexpr int kExtendedPriority = 48;

// The path of the running program; empty when the system does not tell it.
CString location() {
    try {
        return SGetModuleFileName(nullptr);
    } catch (...) {
        return "";
    }
}

}  // namespace

UFileErrorLogBase::UFileErrorLogBase() : m_processId(getpid()), m_rotationSize(kRotationSize) {}

void UFileErrorLogBase::setParam(const char* name, const char* value) try {
    if (name != nullptr && std::strcmp(name, "module_name") == 0) {
        setSharedName(m_moduleName, value);
    }
} catch (const std::bad_alloc&) {
    // The lines that follow stand under the old name rather than nowhere.
}

bool UFileErrorLogBase::getFileSize(const char* path, unsigned long long& size) {
    struct stat status {};
    if (stat(path, &status) != 0) return false;
    size = static_cast<unsigned long long>(status.st_size);
    return true;
}

CString UFileErrorLogBase::generateFileHeader() {
    utsname system{};
    uname(&system);
    const CString rule('=', 74);
    return rule + "\nKernel version: " + system.version + "\nSystem: " + system.sysname +
           "\nRelease: " + system.release + "\nModel: " + system.machine +
           "\nNode name: " + system.nodename + "\n" + rule + "\n";
}

bool UFileErrorLogBase::generateLogLineHeader(LogLineHeader& header) const {
    return header.stamp(m_processId, m_moduleName);
}

bool UFileErrorLogBase::needRotation(const char* path) const {
    unsigned long long size = 0;
    return getFileSize(path, size) && size > m_rotationSize.load(std::memory_order_relaxed);
}

void UFileErrorLogBase::readSettings() {
    const unsigned int level = ULogSettings::getModuleLogLevel(sharedName(m_moduleName));
    m_rotationSize.store(ULogSettings::getFileRotationSize(), std::memory_order_relaxed);
    SetLogLevel(static_cast<int>(level));
}

void UFileErrorLogBase::printStartUpHeader() {
    constexpr char kRule[] = " =====================================\n";
    const char* const locale = setlocale(LC_ALL, nullptr);
    WriteLogStr(" \n");
    WriteLogStr(kRule);
    WriteLog(" Location: %s\n", static_cast<const char*>(location()));
    WriteLog(" Locale: %s\n", locale != nullptr ? locale : "");
    WriteLogStr(kRule);
    WriteLogStr(" \n");
    WriteLog(kExtendedPriority, "current log level = %d\n", GetLogLevel());
}
