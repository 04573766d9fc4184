#pragma once

#include "BareDatabase.h"
#include "WorkDirectory.h"

#include <cubes/cubes.h>

#include <array>
#include <functional>
#include <span>

namespace bench {

/// Purpose, mode, time, user, result and iteration; four-key entries have the first four.
using Key = std::array<short, 6>;

/// The operations of a cube that are measured, each on one entry; true when it worked.
struct Operations {
    std::function<bool(Key const&)> check;
    std::function<bool(Key const&)> fileName;
    std::function<bool(Key const&)> isCorrect;
    std::function<bool(Key const&)> incUsage;
    std::function<bool(Key const&)> decUsage;
    std::function<bool(Key const&)> add;
    std::function<bool(Key const&)> clear;
    /// Lists all entries; gives their number.
    std::function<int()> list;
    /// Reads all rows one by one; gives their number.
    std::function<int()> walk;
    /// Lists the children of an entry; gives their number. Only results have parents.
    std::function<int(Key const&)> children;
};

/// A kind of cubes: the entry table and how its test entries are spread over the keys.
struct Family {
    char const* name;
    char const* alias;
    int cube;
    /// The columns of the key, the cube number first.
    std::span<char const* const> columns;
    /// The columns that a list holds of each row.
    char const* listed;
    bool listsFileNames;
    /// How many values each part of a key takes.
    int perPart;
    /// isCorrect of a result asks Check before it looks at the counter.
    int lookUpsOfIsCorrect;
    Operations (*operationsIn)(cubes::Project const&);
    std::string (*schemaIn)(cubes::Project const&);
};

extern Family const fourKeys;
extern Family const sixKeys;

/// A project of its own with so many entries of one family, rows only.
class Entries {
public:
    /// `postgresUrl`: empty takes an SQLite database of its own.
    Entries(Family const& family, std::string const& postgresUrl, int count);

    Operations const& operations() const { return operations_; }
    /// The same entries for applications, without the cube objects.
    cubes::EntryStore& store() const { return project_.store(); }
    cubes::EntryKey storeKey(Key const& key) const;
    /// A connection to the same database.
    BareDatabase& bare() { return *bare_; }
    /// "sqlite" or "postgres", and the family.
    std::string const& name() const { return name_; }
    /// Makes the entries `first` and behind those of another cube of the family.
    void giveAway(int first);
    /// The entry table's name in SQL.
    std::string const& table() const { return table_; }

    /// The keys of `picked` entries at random, the same in every run.
    std::vector<Key> randomKeys(int picked) const;
    /// The key of entry `index`, dense; beyond the count: of an entry that is not there.
    Key keyOf(int index) const;
    /// What the bare statements bind for a key: cube number and parts.
    Values valuesOf(Key const& key) const;

private:
    void fill();

    Family const& family_;
    int count_;
    WorkDirectory work_;
    std::string database_;
    std::string name_;
    cubes::Project project_;
    std::string table_;
    Operations operations_;
    std::unique_ptr<BareDatabase> bare_;
};

}
