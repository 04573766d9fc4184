// Listing a million entries against a bare ordered scan, and the memory that walking them takes.

#include "Benches.h"
#include "Entries.h"

#include <fmt/format.h>

#include <stdexcept>

namespace bench {

namespace {

constexpr int count = 1000000;
constexpr double mebibyte = 1024.0 * 1024.0;
constexpr double walkLimit = 64;

void require(int listed) {
    if (listed != count) throw std::runtime_error("entries were left out");
}

// Mebibytes, in the columns of times: "bare" is the limit itself.
Result walkMemory(Entries const& entries) {
    double const before = resetPeakMemory();
    require(entries.operations().walk());
    double const growth = (peakMemory() - before) / mebibyte;
    return {fmt::format("{}, {}, walk: MiB against the limit", entries.name(), count), walkLimit, std::max(growth, 0.0),
        1.0, 0};
}

Result listing(Entries& entries, Family const& family) {
    std::string const query = fmt::format("select {} from {} where cubenr = {} order by \"{}\"", family.listed,
        entries.table(), family.cube, fmt::join(family.columns, "\", \""));
    return compare({fmt::format("{}, {}, list", entries.name(), count), 3.0, 3, 1,
        [&] { require(entries.bare().list(query, family.listsFileNames)); },
        [&] { require(entries.operations().list()); }});
}

void measure(std::vector<Result>& results, Family const& family, std::string const& url) {
    Entries entries(family, url, count);
    results.push_back(walkMemory(entries));
    results.push_back(listing(entries, family));
}

}

std::vector<Result> listings(std::string const& postgresUrl) {
    std::vector<Result> results;
    for (Family const* const family : {&fourKeys, &sixKeys}) {
        measure(results, *family, "");
        if (!postgresUrl.empty()) measure(results, *family, postgresUrl);
    }
    return results;
}

}
