#include "host/database/sqlite/WriterQueue.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <limits>
#include <thread>
#include <utility>

namespace cubes::database::sqlite {

namespace {

// A commit takes a few hundred microseconds, so the waits are of that size: 20 microseconds at first, up to 1 ms for a
// writer that takes its time. SQLite's own handler soon sleeps for a tenth of a second.
void pause(int attempt) {
    std::this_thread::sleep_for(std::chrono::microseconds(std::min(20 * (attempt + 1), 1000)));
}

// Nanoseconds since 1970: all processes of the machine agree on them.
std::uint64_t now() {
    auto const time = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

}

// Two that arrive in the same nanosecond get different bytes.
platform::ByteLock WriterQueue::takePlace() {
    bool const isNew = !platform::exists(file_);
    for (ticket_ = now();; ++ticket_) {
        auto place = platform::ByteLock::tryTake(file_, ticket_);
        if (!place) continue;
        // Whoever may write to the database may queue.
        if (isNew)
            std::filesystem::permissions(
                platform::toPath(file_), std::filesystem::status(platform::toPath(database_)).permissions());
        return *std::move(place);
    }
}

void WriterQueue::enter() noexcept {
    if (place_) return;
    waitingSince_ = Clock::now();
    try {
        place_ = takePlace();
        for (int attempt = 0; place_->isHeldByOthers(0, ticket_) && !isOver(); ++attempt) pause(attempt);
    } catch (std::exception const&) {
        // Without a place in the queue SQLite's own locks decide who writes next.
    }
    waitedInQueue_ = Clock::now() - waitingSince_;
}

void WriterQueue::removeFile() noexcept {
    constexpr std::uint64_t last = std::numeric_limits<std::int64_t>::max();
    try {
        place_.reset();
        if (!platform::exists(file_)) return;
        auto const closing = platform::ByteLock::tryTake(file_, last);
        if (closing && !closing->isHeldByOthers(0, last)) platform::discardFile(file_);
    } catch (std::exception const&) {
        // An empty file without meaning stays.
    }
}

bool WriterQueue::waitForLocks(int attempt) noexcept {
    if (attempt == 0) waitingSince_ = Clock::now() - std::exchange(waitedInQueue_, Clock::duration());
    if (isOver()) return false;
    pause(attempt);
    return true;
}

}
