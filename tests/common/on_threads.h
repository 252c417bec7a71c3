#pragma once

/// Running something elsewhere, and how long something took.

#include <chrono>
#include <thread>
#include <vector>

/// The steps that the threads of a test take together, under the thread sanitizer too; fewer where
/// a step is dear.
constexpr int kThreadSteps = 100000;

/// @return what `action` gives on another thread.
template <class Action>
auto onAnotherThread(Action action) {
    decltype(action()) result{};
    std::thread([&] { result = action(); }).join();
    return result;
}

/// Runs `action(number)` on `count` threads at once, numbered from 0, and waits for their ends.
template <class Action>
void onThreads(int count, Action action) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(action, i);
    for (std::thread& thread : threads) thread.join();
}

/// The time that `action` takes, by the time of day, which is what deadlines are.
template <class Action>
std::chrono::milliseconds timeOf(Action action) {
    const auto start = std::chrono::system_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now() -
                                                                 start);
}
