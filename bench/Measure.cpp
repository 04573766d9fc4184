#include "Measure.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>

namespace bench {

namespace {

double microseconds(std::function<void()> const& round) {
    auto const start = std::chrono::steady_clock::now();
    round();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}

Result compare(Contest const& contest) {
    contest.bare();
    contest.ours();
    std::vector<double> bare;
    std::vector<double> ours;
    for (int round = 0; round < contest.rounds; ++round) {
        bare.push_back(microseconds(contest.bare) / contest.repeats);
        ours.push_back(microseconds(contest.ours) / contest.repeats);
    }
    return {contest.name, median(bare), median(ours), contest.limit, contest.allowance};
}

double resetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
    return peakMemory();
}

double peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
        if (word == "VmHWM:") break;
    double kibibytes = 0;
    status >> kibibytes;
    return kibibytes * 1024;
}

}
