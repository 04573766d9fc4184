#pragma once

#include <string>

namespace cubes::tool {

/// Shows how far a long work is, in one line of a terminal that goes away at the end. Shows
/// nothing when the messages go to a file or a pipe.
class Progress {
public:
    explicit Progress(std::string what);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// `share`: of the work that is done, 0 to 1.
    void reached(double share);

private:
    std::string what_;
    int shown_ = -1;
    bool watched_;
};

}
