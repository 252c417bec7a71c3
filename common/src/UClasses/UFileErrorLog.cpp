#include "UFileErrorLog.h"

#include <array>
#include <cerrno>
#include <exception>
#include <memory>
#include <new>
#include <string_view>

#include "LogFile.h"
#include "LogLineHeader.h"
#include "PriorityLine.h"
#include "SharedName.h"
#include "UAutoSync.h"
#include "URaise.h"
#include "UserFolders.h"

namespace {

constexpr unsigned int kWritesBetweenLooks = 50;
constexpr int kByteBlockPriority = 4;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

std::string_view viewOf(const unsigned char* data, unsigned int length) {
    return {reinterpret_cast<const char*>(data), length};
}

// Writes a block and the empty line behind it; raises when the disk does not take them.
void writeBlock(std::FILE* file, std::string_view block) {
    constexpr std::string_view kEnd = "\n\n";
    const std::size_t written = writeToLogFile(file, {block, kEnd});
    if (written < block.size()) {
        URaise("UFileErrorLog::WriteLogByte", "fwrite() failed (error)", errno);
    }
    if (written < block.size() + kEnd.size()) {
        URaise("UFileErrorLog::WriteLogByte()", "_ftprintf() failed (error)", errno);
    }
}

}  // namespace

UFileErrorLog::~UFileErrorLog() {
    try {
        Close();
    } catch (...) {
        // Whatever a lock that cannot be given back raises.
    }
}

int UFileErrorLog::Open(const char* name, const char* mode) try {
    if (m_file.load(std::memory_order_acquire) != nullptr) return 0;
    readSettings();
    getZervaLogsFolderPath(true);
    const CString path = name != nullptr && *name != '\0' ? name : "log.txt";
    setSharedName(m_fileName, path);
    OpenFile file(openLogFile(path, mode));
    if (!file) return errno;
    setFilePermission(path);
    unsigned long long size = 0;
    if (!getFileSize(path, size)) size = 0;
    if (size == 0) {
        const CString header = generateFileHeader();
        writeToLogFile(file.get(), {{header, static_cast<std::size_t>(header.GetLength())}});
    }
    std::FILE* closed = nullptr;
    if (m_file.compare_exchange_strong(closed, file.get(), std::memory_order_acq_rel)) {
        static_cast<void>(file.release());
        printStartUpHeader();
    }
    return 0;
} catch (const std::exception&) {
    return ENOMEM;
}

int UFileErrorLog::Close() {
    const UAutoSync sync(m_lock);
    if (std::FILE* const file = m_file.exchange(nullptr, std::memory_order_acq_rel)) {
        std::fclose(file);
    }
    return 0;
}

int UFileErrorLog::WriteLogItem(const char* text) {
    const UAutoSync sync(m_lock);
    std::FILE* const file = m_file.load(std::memory_order_acquire);
    if (file == nullptr) return -1;
    const std::string_view item = text != nullptr ? text : "";
    int result = -1;
    LogLineHeader header;
    if (generateLogLineHeader(header)) {
        writeToLogFile(file, {header.beforeModule(), header.moduleName(), ", ", item});
        result = static_cast<int>(item.size());
    }
    CheckForRotation();
    return result;
}

int UFileErrorLog::WriteLogByte(unsigned char* data, unsigned int length) {
    const UAutoSync sync(m_lock);
    std::FILE* const file = m_file.load(std::memory_order_acquire);
    if (file == nullptr || (data == nullptr && length != 0)) return -1;
    int result = -1;
    try {
        writeBlock(file, viewOf(data, length));
        result = static_cast<int>(length);
    } catch (...) {
        // Raising it has logged it.
    }
    CheckForRotation();
    return result;
}

int UFileErrorLog::WriteLogByte(const char* text, unsigned char* data, unsigned int length) {
    const UAutoSync sync(m_lock);
    std::FILE* const file = m_file.load(std::memory_order_acquire);
    if (file == nullptr || (data == nullptr && length != 0)) return -1;
    int result = -1;
    LogLineHeader header;
    if (generateLogLineHeader(header)) {
        std::array<char, PriorityLine::kMaxColumn> column;
        const char* const end = PriorityLine::writeColumn(column.data(), kByteBlockPriority);
        writeToLogFile(file, {header.beforeModule(),
                              header.moduleName(),
                              ", ",
                              {column.data(), static_cast<std::size_t>(end - column.data())},
                              text != nullptr ? text : "",
                              viewOf(data, length),
                              "\n"});
        result = static_cast<int>(length);
    }
    CheckForRotation();
    return result;
}

// The copy shares its characters with the member, and only that keeps them.
const char* UFileErrorLog::GetLogName() { return sharedName(m_fileName); }

void UFileErrorLog::CheckForRotation() try {
    if (++m_writes % kWritesBetweenLooks != 0) return;
    const CString name = sharedName(m_fileName);
    if (!needRotation(name)) return;
    const CString old = name + ".bak";
    Close();
    if (std::rename(name, old) != 0) std::remove(name);
    Open(name, "w");
} catch (...) {
    // No memory: the file stays as it is until the next look.
}

void UFileErrorLog::PrepareFork() {
    m_lock.Lock();
    lockSharedNames();
    prepareLogClockForFork();
}

void UFileErrorLog::AfterForkInParent() {
    unlockSharedNames();
    m_lock.Unlock();
}

void UFileErrorLog::AfterForkInChild() {
    // Not given back: the child's one thread is not the one that took them.
    renewSharedNamesInChild();
    new (&m_lock) UCriticalSection;
    renewLogClockInChild();
}
