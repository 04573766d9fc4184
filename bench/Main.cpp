// cubes_bench databases|matrices|routes: prints each figure beside the raw limit measured in the same run; exits with 1
// when a figure misses its limit.

#include "Benches.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace {

using Results = std::vector<bench::Result>;

struct Part {
    std::string_view name;
    Results (*measure)();
};

std::string postgresUrl() {
    char const* const given = std::getenv("CUBES_BENCH_POSTGRES");
    if (!given) fmt::print("no CUBES_BENCH_POSTGRES: the figures over PostgreSQL are left out\n");
    return given ? given : "";
}

Results databases() {
    std::string const postgres = postgresUrl();
    Results all = bench::listings(postgres);
    Results const operations = bench::entryOperations(postgres);
    all.insert(all.end(), operations.begin(), operations.end());
    return all;
}

Results routes() {
    char const* const network = std::getenv("CUBES_BENCH_NETWORK");
    if (network) return bench::routes(network);
    fmt::print("no CUBES_BENCH_NETWORK: the figures of routes are left out\n");
    return {};
}

constexpr Part parts[] = {{"databases", databases}, {"matrices", bench::matrices}, {"routes", routes}};

Part const* findPart(std::string_view name) {
    for (Part const& part : parts)
        if (part.name == name) return &part;
    return nullptr;
}

bool print(Results const& results) {
    bool allHold = true;
    fmt::print("{:<58} {:>12} {:>12} {:>7} {:>6}\n", "medians in microseconds", "bare", "ours", "ratio", "limit");
    for (bench::Result const& one : results) {
        fmt::print("{:<58} {:>12.1f} {:>12.1f} {:>7.2f} {:>6.2f}{}  {}\n", one.name, one.bare, one.ours, one.ratio(),
            one.limit, one.allowance > 0 ? fmt::format(" + {:.0f}", one.allowance) : std::string(),
            one.holds() ? "holds" : "MISSED");
        allHold = allHold && one.holds();
    }
    return allHold;
}

}

int main(int count, char** arguments) {
    Part const* const part = count == 2 ? findPart(arguments[1]) : nullptr;
    if (!part) {
        std::fputs("usage: cubes_bench databases|matrices|routes\n", stderr);
        return 2;
    }
    try {
        return print(part->measure()) ? 0 : 1;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "cubes_bench: %s\n", error.what());
        return 3;
    }
}
