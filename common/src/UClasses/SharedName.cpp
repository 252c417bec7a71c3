#include "SharedName.h"

#include <cstring>
#include <mutex>
#include <new>

namespace {

constinit std::mutex s_names;

}  // namespace

void setSharedName(CString& name, const char* value) {
    const std::lock_guard guard(s_names);
    if (name != value) name = value;
}

CString sharedName(const CString& name) {
    const std::lock_guard guard(s_names);
    return name;
}

char* copySharedName(const CString& name, char* out, std::size_t room) {
    const std::lock_guard guard(s_names);
    const std::size_t length = static_cast<std::size_t>(name.GetLength());
    if (length > room) return nullptr;
    std::memcpy(out, name, length);
    return out + length;
}

void lockSharedNames() { s_names.lock(); }

void unlockSharedNames() { s_names.unlock(); }

void renewSharedNamesInChild() { new (&s_names) std::mutex; }
