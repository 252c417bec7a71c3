#include "USemaphore.h"

#include "PosixCall.h"

USemaphore::USemaphore(unsigned int initialCount, unsigned int maxCount)
    : m_count(initialCount), m_maxCount(maxCount) {
    Monitor{m_mutex, m_condition}.make();
}

USemaphore::~USemaphore() { Monitor{m_mutex, m_condition}.destroy(); }

unsigned int USemaphore::Acquire(unsigned int timeout) {
    return waitUntil(
        {m_mutex, m_condition}, m_waiters, timeout, [this] { return m_count != 0; },
        [this] { --m_count; });
}

bool USemaphore::Release() {
    const Monitor monitor{m_mutex, m_condition};
    monitor.lock();
    if (m_count < m_maxCount) ++m_count;
    if (m_waiters != 0) {
        logFailure(pthread_cond_signal(&m_condition),
                   "pthread_cond_signal - failed signal condition");
    }
    monitor.unlock();
    return true;
}
