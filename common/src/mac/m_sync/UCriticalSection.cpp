#include "UCriticalSection.h"

#include "PosixCall.h"

UCriticalSection::UCriticalSection() {
    makeRecursive(m_mutex, m_attributes, RecursiveType::wanted);
}

UCriticalSection::~UCriticalSection() { destroyRecursive(m_mutex, m_attributes); }

void UCriticalSection::LockFailed(int error) {
    logFailure(error, "pthread_mutex_lock - failed to lock");
}

void UCriticalSection::UnlockFailed(int error) {
    logFailure(error, "pthread_mutex_unlock - failed to unlock");
}
