#pragma once

#include <atomic>
#include <thread>
#include <vector>

/// Runs a function on several threads at once, with the number of each. Returns when all have returned.
template<typename Function>
void onThreads(int count, Function function)
{
    std::atomic<bool> go = false;
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&go, &function, number] {
            while (!go)
                std::this_thread::yield();
            function(number);
        });
    }
    go = true;
    for (std::thread& thread : threads)
        thread.join();
}
