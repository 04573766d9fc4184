#pragma once

#include <cstddef>
#include <string>

namespace cubes::tool {

/// Shows how far a long work is, in one line of a terminal that goes away at the end. Shows
/// nothing when the messages go to a file or a pipe.
class Progress {
public:
    Progress(std::string what, std::size_t steps);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// One more step is done.
    void step();

private:
    void show();

    std::string what_;
    std::size_t steps_;
    std::size_t done_ = 0;
    int shown_ = -1;
    bool watched_;
};

}
