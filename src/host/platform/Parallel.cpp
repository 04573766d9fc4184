#include "host/platform/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace cubes::platform {

namespace {

class Crew {
public:
    Crew(std::size_t count, std::function<Worker()> const& newWorker) : count_(count), newWorker_(newWorker) {}

    void takePart() noexcept {
        try {
            Worker const work = newWorker_();
            for (std::size_t item = next_++; item < count_; item = next_++) work(item);
        } catch (...) {
            next_ = count_;
            std::lock_guard const lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
        }
    }

    void rethrowFailure() {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    std::size_t const count_;
    std::function<Worker()> const& newWorker_;
    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
    std::exception_ptr failure_;
};

}

void inParallel(std::size_t count, std::function<Worker()> const& newWorker) {
    Crew crew(count, newWorker);
    std::size_t const cores = std::max(1u, std::thread::hardware_concurrency());
    {
        std::vector<std::jthread> helpers;
        try {
            while (helpers.size() + 1 < std::min(cores, count)) helpers.emplace_back([&crew] { crew.takePart(); });
        } catch (std::system_error const&) {
            // Having fewer threads than cores is slower, but not an error.
        }
        crew.takePart();
    }
    crew.rethrowFailure();
}

}
