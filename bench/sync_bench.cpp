// Locks and waits beside the standard library's, Qt's and the platform's.

#include <benchmark/benchmark.h>
#include <semaphore.h>

#include <QRecursiveMutex>
#include <QSemaphore>
#include <mutex>
#include <thread>

#include "UAutoSync.h"
#include "UCriticalSection.h"
#include "UEvent.h"
#include "UMutex.h"
#include "USemaphore.h"

namespace {

// The C library takes locks at less than their price until a process starts its second thread, and
// a browser has started it.
[[maybe_unused]] const int secondThread = (std::thread([] {}).join(), 0);

UCriticalSection section;
std::recursive_mutex standardMutex;
QRecursiveMutex qtMutex;

void lockOurs(benchmark::State& state) {
    for (auto _ : state) {
        const UAutoSync sync(section);
        benchmark::ClobberMemory();
    }
}

void lockStandard(benchmark::State& state) {
    for (auto _ : state) {
        const std::lock_guard sync(standardMutex);
        benchmark::ClobberMemory();
    }
}

void lockQt(benchmark::State& state) {
    for (auto _ : state) {
        qtMutex.lock();
        benchmark::ClobberMemory();
        qtMutex.unlock();
    }
}

void nestedOurs(benchmark::State& state) {
    const UAutoSync outer(section);
    lockOurs(state);
}

void nestedStandard(benchmark::State& state) {
    const std::lock_guard outer(standardMutex);
    lockStandard(state);
}

void timedOurs(benchmark::State& state) {
    UMutex mutex;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mutex.Acquire(1000));
        mutex.Release();
    }
}

void timedStandard(benchmark::State& state) {
    std::recursive_timed_mutex mutex;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mutex.try_lock_for(std::chrono::seconds(1)));
        mutex.unlock();
    }
}

void timedQt(benchmark::State& state) {
    QRecursiveMutex mutex;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mutex.tryLock(1000));
        mutex.unlock();
    }
}

void semaphoreOurs(benchmark::State& state) {
    USemaphore semaphore(0, 10);
    for (auto _ : state) {
        semaphore.Release();
        benchmark::DoNotOptimize(semaphore.Acquire(0));
    }
}

void semaphorePosix(benchmark::State& state) {
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    for (auto _ : state) {
        sem_post(&semaphore);
        benchmark::DoNotOptimize(sem_trywait(&semaphore));
    }
    sem_destroy(&semaphore);
}

void semaphoreQt(benchmark::State& state) {
    QSemaphore semaphore;
    for (auto _ : state) {
        semaphore.release();
        benchmark::DoNotOptimize(semaphore.tryAcquire());
    }
}

class OurGate {
  public:
    void open() { m_semaphore.Release(); }
    void pass() { m_semaphore.Acquire(kWaitForever); }

  private:
    USemaphore m_semaphore{0, 1};
};

class PosixGate {
  public:
    PosixGate() { sem_init(&m_semaphore, 0, 0); }
    ~PosixGate() { sem_destroy(&m_semaphore); }
    PosixGate(const PosixGate&) = delete;
    PosixGate& operator=(const PosixGate&) = delete;
    void open() { sem_post(&m_semaphore); }
    void pass() { sem_wait(&m_semaphore); }

  private:
    sem_t m_semaphore;
};

// Two threads that let each other go on in turn: there and back an iteration.
template <typename Gate>
void pingPong(benchmark::State& state) {
    Gate there;
    Gate back;
    bool isOver = false;
    std::thread other([&] {
        for (there.pass(); !isOver; there.pass()) back.open();
    });
    for (auto _ : state) {
        there.open();
        back.pass();
    }
    isOver = true;
    there.open();
    other.join();
}

void eventOurs(benchmark::State& state) {
    UEvent event(true, true);
    for (auto _ : state) benchmark::DoNotOptimize(event.wait(kWaitForever));
}

BENCHMARK(lockOurs);
BENCHMARK(lockStandard);
BENCHMARK(lockQt);
BENCHMARK(nestedOurs);
BENCHMARK(nestedStandard);
BENCHMARK(lockOurs)->Threads(2)->UseRealTime();
BENCHMARK(lockStandard)->Threads(2)->UseRealTime();
BENCHMARK(lockQt)->Threads(2)->UseRealTime();
BENCHMARK(timedOurs);
BENCHMARK(timedStandard);
BENCHMARK(timedQt);
BENCHMARK(semaphoreOurs);
BENCHMARK(semaphorePosix);
BENCHMARK(semaphoreQt);
BENCHMARK(pingPong<OurGate>)->UseRealTime();
BENCHMARK(pingPong<PosixGate>)->UseRealTime();
BENCHMARK(eventOurs);

}  // namespace
