#include "UFileErrorLog.h"

#include <cerrno>
#include <exception>
#include <memory>
#include <new>
#include <string_view>

#include "../m_strings/PlainFormat.h"
#include "LogFile.h"
#include "LogLineHeader.h"
#include "SharedName.h"
#include "UAutoSync.h"
#include "URaise.h"
#include "UserFolders.h"

namespace {

constexpr unsigned int kWritesBetweenLooks = 50;
constexpr std::string_view kColumn = "0,,,, ";
constexpr std::string_view kByteBlockColumn = "4,,,, ";

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

int UFileErrorLog::WriteLine(std::string_view column, std::span<const std::string_view> text) {
    const UAutoSync sync(m_lock);
    std::FILE* const file = m_file.load(std::memory_order_acquire);
    if (file == nullptr) return -1;
    int result = -1;
    LogLineHeader header;
    if (generateLogLineHeader(header)) {
        writeToLogFile(file, {header.text(), header.longName(), ", ", column}, text);
        result = 0;
    }
    CheckForRotation();
    return result;
}

int UFileErrorLog::WriteLogItem(const char* text) {
    const std::string_view item = text != nullptr ? text : "";
    return WriteLine("", {&item, 1}) == 0 ? static_cast<int>(item.size()) : -1;
}

int UFileErrorLog::WriteLogFormat(const char* format, va_list args) {
    if (GetLogLevel() < 1) return 0;
    PlainFormat plain;
    if (format != nullptr && plain.Read(format, args)) return WriteLine(kColumn, plain.Pieces());
    CString text;
    text.FormatV(format, args);
    return WriteErrorStr(text) < 0 ? -1 : 0;
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
    if (data == nullptr && length != 0) return -1;
    const std::string_view pieces[] = {text != nullptr ? text : "", viewOf(data, length), "\n"};
    return WriteLine(kByteBlockColumn, pieces) == 0 ? static_cast<int>(length) : -1;
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
