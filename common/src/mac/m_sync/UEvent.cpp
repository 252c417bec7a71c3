#include "UEvent.h"

#include "PosixCall.h"

UEvent::UEvent(bool manualReset, bool initialState)
    : m_manualReset(manualReset), m_signaled(initialState) {
    Monitor{m_mutex, m_condition}.make();
}

UEvent::~UEvent() { Monitor{m_mutex, m_condition}.destroy(); }

void UEvent::set() {
    const Monitor monitor{m_mutex, m_condition};
    monitor.lock();
    m_signaled = true;
    if (m_waiters != 0 && m_manualReset) {
        logFailure(pthread_cond_broadcast(&m_condition),
                   "pthread_cond_broadcast - failed signal condition");
    } else if (m_waiters != 0) {
        logFailure(pthread_cond_signal(&m_condition),
                   "pthread_cond_signal - failed signal condition");
    }
    monitor.unlock();
}

void UEvent::reset() {
    const Monitor monitor{m_mutex, m_condition};
    monitor.lock();
    m_signaled = false;
    monitor.unlock();
}

unsigned int UEvent::wait(unsigned int timeout) {
    // Nothing is taken back on success, whatever the kind of event: it stays signalled on purpose.
    return waitUntil(
        {m_mutex, m_condition}, m_waiters, timeout, [this] { return m_signaled; }, [] {});
}
