#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One figure with its limit. Times are medians in microseconds.
struct Result {
    std::string name;
    double bare = 0;
    double ours = 0;
    /// At most limit * bare + allowance.
    double limit = 0;
    double allowance = 0;

    double ratio() const { return ours / bare; }
    bool holds() const { return ours <= limit * bare + allowance; }
};

/// The two sides of a comparison: each function is one round of `repeats` operations.
struct Contest {
    std::string name;
    double limit = 0;
    int rounds = 0;
    int repeats = 1;
    std::function<void()> bare;
    std::function<void()> ours;
    double allowance = 0;
};

/// Runs both sides alternately, so that a disturbance affects both, and takes the medians.
Result compare(Contest const& contest);

/// Resets the peak of this process's resident memory; returns the current size in bytes.
double resetPeakMemory();
/// The peak since then, in bytes.
double peakMemory();

}
