#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One figure with its bar. Times are medians in microseconds.
struct Result {
    std::string name;
    double bare = 0;
    double ours = 0;
    /// At most bar * bare + allowance.
    double bar = 0;
    double allowance = 0;

    double ratio() const { return ours / bare; }
    bool holds() const { return ours <= bar * bare + allowance; }
};

/// What is compared: each function is one round of `repeats` operations.
struct Contest {
    std::string name;
    double bar = 0;
    int rounds = 0;
    int repeats = 1;
    std::function<void()> bare;
    std::function<void()> ours;
    double allowance = 0;
};

/// Runs both sides in turn, so that what disturbs one disturbs the other, and takes the medians.
Result compare(Contest const& contest);

/// Peak resident memory of this process so far, in bytes.
double peakMemory();
/// Resident memory of this process now, in bytes.
double memory();

}
