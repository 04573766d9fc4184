// The operations on one entry against the equivalent bare prepared statements, on a table of the same size.

#include "Benches.h"
#include "Entries.h"

#include <fmt/format.h>

#include <stdexcept>

namespace bench {

namespace {

constexpr int readsPerRound = 1000;
constexpr int writesPerRound = 100;
constexpr int readRounds = 41;
constexpr int writeRounds = 15;

void require(bool done) {
    if (!done) throw std::runtime_error("an entry was not found or not changed");
}

// The statements equivalent to the operations, with the key in $1, $2...
class BareStatements {
public:
    BareStatements(Entries& entries, Family const& family) : entries_(entries) {
        std::string columns;
        std::string key;
        std::string values;
        int number = 0;
        for (char const* const column : family.columns) {
            ++number;
            columns += fmt::format("\"{}\", ", column);
            key += fmt::format("{}\"{}\" = ${}", number == 1 ? "" : " and ", column, number);
            values += fmt::format("${}, ", number);
        }
        auto const prepare = [&](std::string const& sql) { return entries.bare().prepare(sql); };
        find_ = prepare(fmt::format("select filename from {} where {} limit 1", entries.table(), key));
        raise_ = prepare(
            fmt::format("update {} set \"usageCounter\" = \"usageCounter\" + 1 where {}", entries.table(), key));
        lower_ = prepare(
            fmt::format("update {} set \"usageCounter\" = \"usageCounter\" - 1 where {}", entries.table(), key));
        insert_ = prepare(fmt::format("insert into {} ({}filename, \"usageCounter\") values ({}${}, 0)",
            entries.table(), columns, values, number + 1));
        delete_ = prepare(fmt::format("delete from {} where {}", entries.table(), key));
    }

    bool find(Key const& key) { return run(find_, key); }
    bool raise(Key const& key) { return run(raise_, key); }
    bool lower(Key const& key) { return run(lower_, key); }
    bool remove(Key const& key) { return run(delete_, key); }
    bool insert(Key const& key) {
        Values values = entries_.valuesOf(key);
        values.emplace_back("1-1-1-1-1.bin");
        return entries_.bare().run(insert_, values) == 1;
    }

private:
    bool run(int statement, Key const& key) { return entries_.bare().run(statement, entries_.valuesOf(key)) == 1; }

    Entries& entries_;
    int find_;
    int raise_;
    int lower_;
    int insert_;
    int delete_;
};

using Step = std::function<void(Key const&)>;

// An operation, and the bare statements that it cannot do without.
struct Pair {
    char const* name;
    Step bare;
    Step ours;
};

std::vector<Result> compareAll(
    std::string const& where, double limit, std::vector<Pair> const& pairs, std::vector<Key> const& keys, int rounds) {
    std::vector<Result> results;
    for (Pair const& pair : pairs) {
        auto const round = [&keys](Step const& step) {
            return [&keys, &step] {
                for (Key const& key : keys) step(key);
            };
        };
        results.push_back(compare({fmt::format("{}, {}", where, pair.name), limit, rounds,
            static_cast<int>(keys.size()), round(pair.bare), round(pair.ours)}));
    }
    return results;
}

std::vector<Pair> lookUpsOf(Operations const& ours, BareStatements& bare) {
    Step const find = [&](Key const& key) { require(bare.find(key)); };
    return {
        {"Check", find, [&](Key const& key) { require(ours.check(key)); }},
        {"FileName", find, [&](Key const& key) { require(ours.fileName(key)); }},
    };
}

std::vector<Pair> otherReadsOf(int lookUps, Operations const& ours, BareStatements& bare) {
    return {{"isCorrect",
        [&bare, lookUps](Key const& key) {
            for (int i = 0; i < lookUps; ++i) require(bare.find(key));
        },
        [&](Key const& key) { require(ours.isCorrect(key)); }}};
}

std::vector<Pair> changesOf(Operations const& ours, BareStatements& bare) {
    return {
        {"incUsage", [&](Key const& key) { require(bare.find(key) && bare.raise(key)); },
            [&](Key const& key) { require(ours.incUsage(key)); }},
        {"decUsage", [&](Key const& key) { require(bare.find(key) && bare.lower(key)); },
            [&](Key const& key) { require(ours.decUsage(key)); }},
    };
}

std::vector<Pair> additionsOf(Operations const& ours, BareStatements& bare) {
    return {{"Add and Clear",
        [&](Key const& key) { require(!bare.find(key) && bare.insert(key) && bare.find(key) && bare.remove(key)); },
        [&](Key const& key) { require(ours.add(key) && ours.clear(key)); }}};
}

std::vector<Pair> storesOf(Entries const& entries, BareStatements& bare) {
    auto& store = entries.store();
    return {
        {"store.find", [&](Key const& key) { require(bare.find(key)); },
            [&](Key const& key) { require(store.find(entries.storeKey(key)).has_value()); }},
        {"store.addUser", [&](Key const& key) { require(bare.find(key) && bare.raise(key)); },
            [&](Key const& key) { require(store.addUser(entries.storeKey(key)) > 0); }},
        {"store.removeUser", [&](Key const& key) { require(bare.find(key) && bare.lower(key)); },
            [&](Key const& key) { require(store.removeUser(entries.storeKey(key)) >= 0); }},
    };
}

std::vector<Key> newKeys(Entries const& entries, int count) {
    std::vector<Key> keys;
    for (int i = 0; i < writesPerRound; ++i) keys.push_back(entries.keyOf(count + i));
    return keys;
}

void measure(std::vector<Result>& results, Family const& family, std::string const& url, int count) {
    Entries entries(family, url, count);
    BareStatements bare(entries, family);
    Operations const& ours = entries.operations();
    std::string const where = fmt::format("{}, {}", entries.name(), count);
    auto const reads = entries.randomKeys(readsPerRound);
    auto const writes = entries.randomKeys(writesPerRound);
    auto const add = [&](double limit, std::vector<Pair> const& pairs, std::vector<Key> const& keys, int rounds) {
        auto const more = compareAll(where, limit, pairs, keys, rounds);
        results.insert(results.end(), more.begin(), more.end());
    };
    add(url.empty() ? 2.0 : 1.3, lookUpsOf(ours, bare), reads, readRounds);
    add(2.0, otherReadsOf(family.lookUpsOfIsCorrect, ours, bare), reads, readRounds);
    add(2.0, changesOf(ours, bare), writes, writeRounds);
    add(1.2, storesOf(entries, bare), writes, writeRounds);
    add(2.0, additionsOf(ours, bare), newKeys(entries, count), writeRounds);
}

}

std::vector<Result> entryOperations(std::string const& postgresUrl) {
    std::vector<Result> results;
    for (Family const* const family : {&fourKeys, &sixKeys})
        for (int const count : {1000, 1000000}) {
            measure(results, *family, "", count);
            if (!postgresUrl.empty()) measure(results, *family, postgresUrl, count);
        }
    return results;
}

}
