#pragma once

#include <cubes/cubes.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// An entry's key: purpose, mode, time and user of cube 1.
struct Key {
    short purpose;
    short mode;
    short time;
    short user;
};

/// A directory for the run, removed at the end.
class WorkDirectory {
public:
    WorkDirectory();
    ~WorkDirectory();
    std::string path(std::string const& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

/// The key of entry `index`: dense, so that a million entries fit the parts' ranges.
Key keyOf(int index);

/// The keys of `count` entries picked at random from `entries`, the same in every run.
std::vector<Key> randomKeys(int entries, int count);

/// A project with cube 1 "Bench" and that many entries in it, rows only.
cubes::Project projectWithEntries(std::string const& directory, std::string const& url, int entries);

/// A side of the comparison: an indexed look-up of an entry's file name by the database's own
/// client library, with a prepared statement.
class BareLookUp {
public:
    virtual ~BareLookUp() = default;
    /// Whether the entry is there.
    virtual bool find(Key const& key) = 0;
    /// Reads all entries in key order into records; gives their number.
    virtual int list() = 0;
};

std::unique_ptr<BareLookUp> bareLookUp(std::string const& url);

}
