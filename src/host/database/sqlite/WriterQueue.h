#pragma once

#include "host/platform/File.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace cubes::database::sqlite {

/// The place of one connection in the queue of those that write to a database file, in this and in other processes.
///
/// SQLite itself lets whoever asks at the right moment write next, so that some wait for very long while others write
/// again and again. Here they are served in the order of their arrival: each locks the byte of a file beside the
/// database, "<database>-queue", whose number is the time of its arrival, and waits until no lower byte is locked. A
/// process that ends loses its place. SQLite's own locks still protect the data: where the file cannot be used, and
/// against programs that do not queue, they alone count.
///
/// One thread at a time may use it.
class WriterQueue {
public:
    /// `database`: the file's own path, without links, so that all connections use one queue. `longestWait`: for one
    /// operation, in the queue and for SQLite's own locks together.
    WriterQueue(std::string const& database, std::chrono::milliseconds longestWait)
        : database_(database), file_(database + "-queue"), longestWait_(longestWait) {}

    /// Begins an operation.
    void begin() noexcept;
    /// Waits until it is this connection's turn, unless it is already, or until half of the operation's longest wait is
    /// over; then it gives up its place. REQUIRES: begin().
    void enter() noexcept;
    /// Ends an operation; lets the next connection write unless this one is still inside a transaction.
    void leave(bool isInTransaction) noexcept {
        isUnderWay_ = false;
        if (!isInTransaction) place_.reset();
    }
    /// Removes the file when nobody queues.
    void removeFile() noexcept;

    /// Waits a moment for SQLite's own locks. False when the longest wait is over: that of the operation, or outside of
    /// operations the one that the first attempt, 0, begins.
    bool waitForLocks(int attempt) noexcept;
    std::chrono::milliseconds longestWait() const noexcept { return longestWait_; }

private:
    using Clock = std::chrono::steady_clock;

    /// Nothing when others made it at the same moment.
    std::optional<platform::File> openFile() const;
    /// Nothing when the file was removed meanwhile.
    std::optional<platform::ByteLock> tryTakePlace();
    bool isOver() const noexcept { return Clock::now() > end_; }
    /// A process that was stopped keeps its place: half of the time is left for SQLite's own locks.
    bool isQueueOver() const noexcept { return Clock::now() > end_ - longestWait_ / 2; }

    std::string database_;
    std::string file_;
    std::chrono::milliseconds longestWait_;
    bool isUnderWay_ = false;
    Clock::time_point end_;
    std::optional<platform::ByteLock> place_;
    std::uint64_t ticket_ = 0;
};

}
