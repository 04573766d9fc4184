#include "support/Forked.h"

#include <atomic>
#include <cstdio>
#include <exception>
#include <latch>
#include <thread>
#include <vector>

namespace cubes::test {

// Windows cannot divide a process. Threads stand in: a lock belongs to the handle it was taken with,
// and a transaction to its connection, whether two of them are of one process or of two.
int inProcesses(int count, std::function<void(int)> const& work) {
    std::latch gate(count);
    std::atomic<int> good = 0;
    auto const live = [&](int number) {
        gate.arrive_and_wait();
        try {
            work(number);
            ++good;
        } catch (std::exception const& error) {
            std::fprintf(stderr, "process %d: %s\n", number, error.what());
        }
    };
    std::vector<std::jthread> workers;
    for (int i = 0; i < count; ++i) workers.emplace_back(live, i);
    workers.clear();
    return good;
}

}
