// Listing a million entries against a bare ordered scan, and the memory that walking them takes.

#include "Benches.h"
#include "EntryDatabase.h"

#include <fmt/format.h>

#include <stdexcept>

namespace bench {

namespace {

constexpr int entries = 1000000;
constexpr double mebibyte = 1024.0 * 1024.0;
constexpr double walkLimit = 64;

void require(int count) {
    if (count != entries) throw std::runtime_error("entries were left out");
}

int walk(TRkMatCubes const& cubes) {
    auto table = cubes.Open();
    int count = 0;
    for (; !table->GetEof(); table->Next()) count += table->FieldByName("cubenr")->AsInteger() == 1 ? 1 : 0;
    cubes.Close(table);
    return count;
}

// Mebibytes, in the columns of times: "bare" is the limit itself.
Result walkMemory(std::string const& backend, TRkMatCubes const& cubes) {
    double const before = resetPeakMemory();
    require(walk(cubes));
    double const growth = (peakMemory() - before) / mebibyte;
    return {fmt::format("{} walk, {} entries: MiB against the limit", backend, entries), walkLimit,
        std::max(growth, 0.0), 1.0, 0};
}

void compareAt(std::vector<Result>& results, std::string const& url) {
    WorkDirectory const work;
    std::string const backend = url.empty() ? "sqlite" : "postgres";
    std::string const database = url.empty() ? "sqlite:" + work.path("bench.db") : url;
    auto const project = projectWithEntries(work.path("project"), database, entries);
    TRkMatCubes const cubes(project.settings(), ".odm", true);
    results.push_back(walkMemory(backend, cubes));
    auto const bare = bareLookUp(database);
    auto const ours = [&] {
        TRkAutoListT<TRkMatCubes::TKey> list;
        cubes.Get(list);
        require(list.Count());
    };
    results.push_back(compare(
        {fmt::format("{} list, {} entries", backend, entries), 3.0, 3, 1, [&] { require(bare->list()); }, ours}));
}

}

std::vector<Result> listings(std::string const& postgresUrl) {
    std::vector<Result> results;
    compareAt(results, "");
    if (!postgresUrl.empty()) compareAt(results, postgresUrl);
    return results;
}

}
