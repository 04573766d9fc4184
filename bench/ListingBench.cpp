// Listing a million entries against a bare ordered scan, and the memory that walking them needs.

#include "Benches.h"
#include "Entries.h"

#include <fmt/format.h>

#include <stdexcept>

namespace bench {

namespace {

constexpr int count = 1000000;
constexpr int few = 1000;
constexpr double mebibyte = 1024.0 * 1024.0;
constexpr double walkLimit = 64;

void require(int listed, int expected = count) {
    if (listed != expected)
        throw std::runtime_error(fmt::format("{} entries were listed, expected {}", listed, expected));
}

// Mebibytes, in the columns of times: "bare" is the limit itself.
Result walkMemory(Entries const& entries) {
    double const before = resetPeakMemory();
    require(entries.operations().walk());
    double const growth = (peakMemory() - before) / mebibyte;
    return {fmt::format("{}, {}, walk: MiB against the limit", entries.name(), count), walkLimit, std::max(growth, 0.0),
        1.0, 0};
}

std::string ownRows(Entries const& entries, Family const& family) {
    return fmt::format("select {} from {} where cubenr = {} order by \"{}\"", family.listed, entries.table(),
        family.cube, fmt::join(family.columns, "\", \""));
}

Result listing(Entries& entries, Family const& family) {
    std::string const query = ownRows(entries, family);
    return compare({fmt::format("{}, {}, list", entries.name(), count), 3.0, 3, 1,
        [&] { require(entries.bare().list(query, family.listsFileNames)); },
        [&] { require(entries.operations().list()); }});
}

Result storeListing(Entries& entries, Family const& family) {
    std::string const query =
        fmt::format("select \"{1}\", \"usageCounter\", filename from {0} where cubenr = {2} order by \"{1}\"",
            entries.table(), fmt::join(family.columns, "\", \""), family.cube);
    return compare({fmt::format("{}, {}, store.entries", entries.name(), count), 1.3, 3, 1,
        [&] { require(entries.bare().list(query, true)); },
        [&] {
            int found = 0;
            for (auto const& entry : entries.store().entries({.cube = std::to_string(family.cube)}))
                found += entry.users >= 0;
            require(found);
        }});
}

// Rows of other cubes in the table do not count.
Result listingBeside(Entries& entries, Family const& family) {
    entries.assignToOtherCube(few);
    std::string const query = ownRows(entries, family);
    return compare({fmt::format("{}, {} beside {}, list", entries.name(), few, count - few), 3.0, 15, 1,
        [&] { require(entries.bare().list(query, family.listsFileNames), few); },
        [&] { require(entries.operations().list(), few); }});
}

// The database scans its rows in both cases: parents are not indexed.
Result children(Entries& entries, Family const& family) {
    std::string const query = fmt::format(
        "select {} from {} where parentcubenr = {} and parentpurpose = 1", family.listed, entries.table(), family.cube);
    return compare({fmt::format("{}, {}, children of an entry", entries.name(), count), 2.0, 5, 1,
        [&] { require(entries.bare().list(query, family.listsFileNames), 0); },
        [&] {
            require(entries.operations().children({1, 1, 1, 1, 1, 1}), 0);
        }});
}

void measure(std::vector<Result>& results, Family const& family, std::string const& url) {
    Entries entries(family, url, count);
    results.push_back(walkMemory(entries));
    results.push_back(listing(entries, family));
    results.push_back(storeListing(entries, family));
    if (!entries.operations().children) return;
    results.push_back(listingBeside(entries, family));
    results.push_back(children(entries, family));
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
