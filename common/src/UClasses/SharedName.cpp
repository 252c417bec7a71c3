#include "SharedName.h"

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

void lockSharedNames() { s_names.lock(); }

void unlockSharedNames() { s_names.unlock(); }

void renewSharedNamesInChild() { new (&s_names) std::mutex; }
