// Check and FileName of an entry against a bare prepared look-up on a table of the same size.

#include "Benches.h"
#include "EntryDatabase.h"

#include <fmt/format.h>

#include <stdexcept>

namespace bench {

namespace {

constexpr int lookUpsPerRound = 1000;
constexpr int rounds = 41;

void require(bool found) {
    if (!found) throw std::runtime_error("an entry was not found");
}

void compareAt(std::vector<Result>& results, std::string const& url, double bar, int entries) {
    WorkDirectory const work;
    std::string const backend = url.empty() ? "sqlite" : "postgres";
    std::string const database = url.empty() ? "sqlite:" + work.path("bench.db") : url;
    auto const project = projectWithEntries(work.path("project"), database, entries);
    TRkMatCubes const cubes(project.settings(), ".odm", true);
    auto const bare = bareLookUp(database);
    auto const keys = randomKeys(entries, lookUpsPerRound);

    auto const bareRound = [&] {
        for (Key const& key : keys) require(bare->find(key));
    };
    auto const check = [&] {
        for (Key const& key : keys) require(cubes.Check(1, key.purpose, key.mode, key.time, key.user, false));
    };
    auto const fileName = [&] {
        for (Key const& key : keys)
            require(!cubes.FileName(1, key.purpose, key.mode, key.time, key.user, false).IsEmpty());
    };
    auto const name = [&](char const* what) { return fmt::format("{} {}, {} entries", backend, what, entries); };
    results.push_back(compare({name("Check"), bar, rounds, lookUpsPerRound, bareRound, check}));
    results.push_back(compare({name("FileName"), bar, rounds, lookUpsPerRound, bareRound, fileName}));
}

}

std::vector<Result> lookUps(std::string const& postgresUrl) {
    std::vector<Result> results;
    for (int const entries : {1000, 1000000}) {
        compareAt(results, "", 2.0, entries);
        if (!postgresUrl.empty()) compareAt(results, postgresUrl, 1.3, entries);
    }
    return results;
}

}
