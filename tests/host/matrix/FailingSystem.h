#pragma once

#include <cstddef>
#include <string>

namespace cubes::test {

/// Makes the system refuse hard links to this process with `error`, while an object exists.
class RefusedLinks {
public:
    explicit RefusedLinks(int error);
    ~RefusedLinks();
    RefusedLinks(RefusedLinks const&) = delete;
    RefusedLinks& operator=(RefusedLinks const&) = delete;
};

/// A small file system on a directory while an object exists: one in memory where mounting is permitted and the
/// variable CUBES_TEST_NO_MOUNT is not set, otherwise one that this process pretends.
class SmallDisk {
public:
    SmallDisk(std::string directory, std::size_t kibibytes);
    ~SmallDisk();
    SmallDisk(SmallDisk const&) = delete;
    SmallDisk& operator=(SmallDisk const&) = delete;

    void makeReadOnly();

private:
    std::string directory_;
    bool isMounted_;
};

/// Makes the system refuse to remove files with `error`, while an object exists.
class RefusedRemovals {
public:
    explicit RefusedRemovals(int error);
    ~RefusedRemovals();
    RefusedRemovals(RefusedRemovals const&) = delete;
    RefusedRemovals& operator=(RefusedRemovals const&) = delete;
};

/// Makes system calls of this process fail: while an object exists, the n-th of the calls that change the disk (write,
/// copy, flush, truncate, rename, create a file), counted from 1, fails with `error`, also when HDF5 makes it. Later
/// ones fail too, as on a disk that stays full, unless `once` is set. With `kill` the process ends at that call, with
/// an error.
class FailingSystem {
public:
    enum class Failure { stays, once, kill };

    FailingSystem(int nth, int error, Failure failure = Failure::stays);
    /// Makes nothing fail and only records.
    FailingSystem() : FailingSystem(0, 0) {}
    ~FailingSystem();
    FailingSystem(FailingSystem const&) = delete;
    FailingSystem& operator=(FailingSystem const&) = delete;

    /// Whether a call has failed.
    bool hasFailed() const;
    /// The successful flushes and renames, in order: "flush rename flush-directory".
    std::string settled() const;
};

}
