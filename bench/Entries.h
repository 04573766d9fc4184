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

/// The measured operations of a cube, each on one entry; true on success.
struct Operations {
    std::function<bool(Key const&)> check;
    std::function<bool(Key const&)> fileName;
    std::function<bool(Key const&)> isCorrect;
    std::function<bool(Key const&)> incUsage;
    std::function<bool(Key const&)> decUsage;
    std::function<bool(Key const&)> add;
    std::function<bool(Key const&)> clear;
    /// Lists all entries; returns their number.
    std::function<int()> list;
    /// Reads all rows one by one; returns their number.
    std::function<int()> walk;
    /// Lists the children of an entry; returns their number. Only results have parents.
    std::function<int(Key const&)> children;
};

/// A kind of cube: the entry table and the distribution of its test entries over the keys.
struct Family {
    char const* name;
    char const* alias;
    int cube;
    /// The columns of the key, the cube number first.
    std::span<char const* const> columns;
    /// The columns of each row in a list.
    char const* listed;
    bool listsFileNames;
    /// The number of values of each part of a key.
    int perPart;
    /// isCorrect of a result calls Check before it reads the counter.
    int lookUpsOfIsCorrect;
    Operations (*operationsIn)(cubes::Project const&);
    std::string (*schemaIn)(cubes::Project const&);
};

extern Family const fourKeys;
extern Family const sixKeys;

/// A project of its own with that many entries of one family, rows only.
class Entries {
public:
    /// `postgresUrl`: empty creates an SQLite database.
    Entries(Family const& family, std::string const& postgresUrl, int count);

    Operations const& operations() const { return operations_; }
    /// The same entries for applications, without the cube objects.
    cubes::EntryStore& store() const { return project_.store(); }
    cubes::EntryKey storeKey(Key const& key) const;
    /// A connection to the same database.
    BareDatabase& bare() { return *bare_; }
    /// "sqlite" or "postgres", and the family.
    std::string const& name() const { return name_; }
    /// Assigns the entries from `first` on to another cube of the family.
    void assignToOtherCube(int first);
    /// The entry table's name in SQL.
    std::string const& table() const { return table_; }

    /// The keys of `picked` random entries, the same in every run.
    std::vector<Key> randomKeys(int picked) const;
    /// The key of entry `index`, dense; beyond the count: of an entry that does not exist.
    Key keyOf(int index) const;
    /// The values that the bare statements bind for a key: cube number and parts.
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
