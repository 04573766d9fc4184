#include "Measure.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>

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
    return {contest.name, median(bare), median(ours), contest.bar, contest.allowance};
}

double peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

double memory() {
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

}
