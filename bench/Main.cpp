// cubes_bench [--check]: prints each figure beside the raw limit measured in the same run. With
// --check it fails when one misses its bar, and names it last.

#include "Benches.h"

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

using Results = std::vector<bench::Result>;

void print(Results const& results) {
    for (bench::Result const& one : results)
        fmt::print("{:<58} {:>12.1f} {:>12.1f} {:>7.2f} {:>6.2f}{}  {}\n", one.name, one.bare, one.ours, one.ratio(),
            one.bar, one.allowance > 0 ? fmt::format(" + {:.0f}", one.allowance) : std::string(),
            one.holds() ? "holds" : "MISSED");
    std::fflush(stdout);
}

int missedBars(Results const& results) {
    int missed = 0;
    for (bench::Result const& one : results) {
        if (one.holds()) continue;
        ++missed;
        fmt::print("missed: {} ({:.2f} times the bare way, bar {:.2f})\n", one.name, one.ratio(), one.bar);
    }
    return missed;
}

Results measure() {
    char const* const given = std::getenv("CUBES_BENCH_POSTGRES");
    std::string const postgres = given ? given : "";
    if (postgres.empty()) fmt::print("no CUBES_BENCH_POSTGRES: the figures over PostgreSQL are left out\n");
    fmt::print("{:<58} {:>12} {:>12} {:>7} {:>6}\n", "medians in microseconds", "bare", "ours", "ratio", "bar");
    Results all;
    for (auto const& part : {bench::listings(postgres), bench::lookUps(postgres), bench::matrices()}) {
        print(part);
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

}

int main(int count, char** arguments) {
    bool const check = count == 2 && std::strcmp(arguments[1], "--check") == 0;
    if (count > 1 && !check) {
        fmt::print(stderr, "usage: cubes_bench [--check]\n");
        return 2;
    }
    try {
        int const missed = missedBars(measure());
        return check && missed > 0 ? 1 : 0;
    } catch (std::exception const& error) {
        fmt::print(stderr, "cubes_bench: {}\n", error.what());
        return 3;
    }
}
