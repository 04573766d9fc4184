#pragma once

#include "tool/formats/Formats.h"

#include <cstddef>

namespace cubes::tool {

/// Passes on how much of a work is done, at most a hundred times.
class Milestones {
public:
    /// REQUIRES: `shareDone` outlives this object.
    Milestones(std::size_t whole, ShareDone const& shareDone) : whole_(whole), shareDone_(shareDone) {}

    void reached(std::size_t done) {
        if (!shareDone_ || done < next_) return;
        shareDone_(whole_ == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(whole_));
        next_ = done + whole_ / 100 + 1;
    }

private:
    std::size_t whole_;
    ShareDone const& shareDone_;
    std::size_t next_ = 0;
};

}
