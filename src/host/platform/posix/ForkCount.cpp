#include "host/platform/ForkCount.h"

#include <atomic>

#include <pthread.h>

namespace cubes::platform {

namespace {

std::atomic<unsigned long> forks = 0;

void countFork() {
    ++forks;
}

}

unsigned long forkCount() noexcept {
    [[maybe_unused]] static int const registered = pthread_atfork(nullptr, nullptr, countFork);
    return forks.load(std::memory_order_relaxed);
}

}
