#include "host/database/sqlite/WriterQueue.h"

#include "host/platform/Files.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>

namespace cubes::database::sqlite {

namespace {

constexpr std::uint64_t lastByte = std::numeric_limits<std::int64_t>::max();

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

std::optional<platform::File> WriterQueue::openFile() const {
    try {
        return platform::File::openExisting(file_);
    } catch (std::system_error const& error) {
        if (error.code() != std::errc::no_such_file_or_directory) throw;
    }
    try {
        auto file = platform::File::createNew(file_);
        // Whoever may write to the database may queue.
        platform::takeRights(file, database_);
        return file;
    } catch (std::system_error const& error) {
        if (error.code() != std::errc::file_exists) throw;
        return std::nullopt;
    }
}

// Two that arrive in the same nanosecond get different bytes. Whoever removes the file holds its last byte while it
// looks for places: either it sees this one, or this one waits and sees that the file is gone.
std::optional<platform::ByteLock> WriterQueue::tryTakePlace() {
    auto file = openFile();
    if (!file) return std::nullopt;
    for (ticket_ = now(); !file->tryLock(ticket_);) ++ticket_;
    for (int attempt = 0; file->isLockedByOthers(lastByte, 1) && !isQueueOver(); ++attempt) pause(attempt);
    if (file->isRemoved()) return std::nullopt;
    return platform::ByteLock(*std::move(file));
}

void WriterQueue::begin() noexcept {
    isUnderWay_ = true;
    end_ = Clock::now() + longestWait_;
}

void WriterQueue::enter() noexcept {
    if (place_) return;
    try {
        while (!place_ && !isQueueOver()) place_ = tryTakePlace();
        for (int attempt = 0; place_ && place_->isHeldByOthers(0, ticket_); ++attempt) {
            if (isQueueOver()) return place_.reset();
            pause(attempt);
        }
    } catch (std::exception const&) {
        // Without a place in the queue SQLite's own locks decide who writes next.
    }
}

void WriterQueue::removeFile() noexcept {
    try {
        place_.reset();
        if (!platform::exists(file_)) return;
        auto const closing = platform::ByteLock::tryTake(file_, lastByte);
        if (closing && !closing->isHeldByOthers(0, lastByte)) platform::discardFile(file_);
    } catch (std::exception const&) {
        // An empty file without meaning stays.
    }
}

bool WriterQueue::waitForLocks(int attempt) noexcept {
    if (attempt == 0 && !isUnderWay_) end_ = Clock::now() + longestWait_;
    if (isOver()) return false;
    pause(attempt);
    return true;
}

}
