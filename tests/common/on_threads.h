#pragma once

/// Running something elsewhere, and how long something took.

#include <chrono>
#include <thread>

/// @return what `action` gives on another thread.
template <class Action>
auto onAnotherThread(Action action) {
    decltype(action()) result{};
    std::thread([&] { result = action(); }).join();
    return result;
}

/// The time that `action` takes, by the time of day, which is what deadlines are.
template <class Action>
std::chrono::milliseconds timeOf(Action action) {
    const auto start = std::chrono::system_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now() -
                                                                 start);
}
