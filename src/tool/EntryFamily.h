#pragma once

#include "tool/Entry.h"

#include <cubes/database/TRkTableProxy.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/TRkGlobalSettings.h>
#include <cubes/text/CountedPtr.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace cubes::tool {

/// The parent of an entry as its row tells it: a cube number, 0 for none, and a key, -1 for a part
/// that is not set.
struct ParentNumbers {
    short cube = 0;
    std::array<short, 6> key = {-1, -1, -1, -1, -1, -1};

    bool areSet() const { return *this != ParentNumbers(); }
    bool operator==(ParentNumbers const&) const = default;
};

struct Derived {
    Entry entry;
    ParentNumbers parent;
};

/// What the families of entries, those of the register's cubes, the fares and the results of a
/// kind, do each in its own way. False, null or empty for what is not there.
class EntryFamily {
public:
    virtual ~EntryFamily() = default;

    virtual bool hasTable() const = 0;
    /// In the order of their keys.
    virtual std::vector<Entry> entries() const = 0;
    virtual bool has(Entry const& entry) const = 0;
    virtual std::string path(Entry const& entry) const = 0;
    virtual std::unique_ptr<TRkMatrix> matrix(Entry const& entry) const = 0;

    /// Adds the row alone.
    virtual bool add(Entry const& entry) = 0;
    /// Writes the file of a row; the old file stays until the new one is complete.
    virtual bool save(Entry const& entry, TRkMatrix const& matrix) = 0;
    virtual bool remove(Entry const& entry) = 0;
    /// Removes all entries of a cube, and of the register's the cube itself.
    virtual bool remove(Cube const& cube) = 0;
    virtual bool use(Entry const& entry) = 0;
    virtual bool leave(Entry const& entry) = 0;

    /// The opened table, placed on the entry's row; empty when it is not there.
    virtual CountedPtr<Rktable::TRkTableProxy> row(Entry const& entry) const = 0;
    /// Make the entry what an entry of `source` is, row and file. False also between families that
    /// do not share their way of storing. Throw TRkCubesException when `failIfExists` and it exists.
    virtual bool copyFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) = 0;
    virtual bool moveFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) = 0;

    /// Only results have parents. The entries that have one:
    virtual std::vector<Derived> derived() const { return {}; }
    /// Those among them whose parent is this one, in the order of their keys.
    virtual std::vector<Entry> childrenOf(ParentNumbers const&) const { return {}; }
    /// The numbers of an entry's parent, those of no parent when it has none.
    virtual ParentNumbers parent(Entry const&) const { return {}; }
    virtual bool setParent(Entry const&, ParentNumbers const&) { return false; }

    /// The name of a new entry's file, native; below the directory of its files it may have its own.
    virtual std::string fileName(Entry const& entry) const = 0;
    virtual RkMatrixType matrixType() const = 0;
};

/// The entries of the register's cubes.
std::unique_ptr<EntryFamily> cubeEntries(TRkGlobalSettings* settings);
/// The fares.
std::unique_ptr<EntryFamily> fareEntries(TRkGlobalSettings* settings, Kind const& kind);
/// The results of a kind.
std::unique_ptr<EntryFamily> resultEntries(std::unique_ptr<TRkVarCubes> cube, Kind const& kind);

}
