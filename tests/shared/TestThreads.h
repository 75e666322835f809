#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

constexpr int ThreadCount = 8;

/// Does \a work on all threads, which begin together, and waits for their ends. The threads are not
/// Qt's: suppressions/tsan.supp hides every race below one of Qt's functions.
inline void onAllThreads(const std::function<void()> &work)
{
    std::atomic_int ready{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < ThreadCount; ++number) {
        threads.emplace_back([&] {
            ++ready;
            while (ready < ThreadCount)
                std::this_thread::yield();
            work();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}
