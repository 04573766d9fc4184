#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace cubes::tool {

/// Called with the share (0 to 1) of a long task that is done; may be empty.
using ProgressCallback = std::function<void(double)>;

/// Calls a progress callback at most a hundred times, however often the work reports.
class ProgressThrottle {
public:
    /// REQUIRES: `callback` outlives this object.
    ProgressThrottle(std::size_t total, ProgressCallback const& callback) : total_(total), callback_(callback) {}

    void reached(std::size_t done) {
        if (!callback_ || done < next_) return;
        callback_(total_ == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(total_));
        next_ = done + total_ / 100 + 1;
    }

private:
    std::size_t total_;
    ProgressCallback const& callback_;
    std::size_t next_ = 0;
};

/// Shows the progress of a long task in one line of the terminal, which is erased at the end. Shows
/// nothing when standard error is a file or a pipe. Ends the task when the tool is asked to end.
class Progress {
public:
    explicit Progress(std::string task);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// `share`: the part of the work that is done, 0 to 1. Throws Interrupted.
    void reached(double share);
    void reached(std::size_t done, std::size_t total) {
        reached(static_cast<double>(done) / static_cast<double>(total));
    }
    /// Updates this line, which must outlive the callback.
    ProgressCallback callback() {
        return [this](double share) { reached(share); };
    }

private:
    std::string task_;
    int shown_ = -1;
    bool isTerminal_;
};

}
