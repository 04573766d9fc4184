#pragma once

#include <string>

namespace cubes::test {

/// Makes the system refuse second names (hard links) to this process with `error`, while an object lives.
class RefusedLinks {
public:
    explicit RefusedLinks(int error);
    ~RefusedLinks();
    RefusedLinks(RefusedLinks const&) = delete;
    RefusedLinks& operator=(RefusedLinks const&) = delete;
};

/// Makes the system fail for this process: while an object lives, the n-th of the calls that change
/// the disk (write, copy, flush, cut, rename, make a file), counted from 1, fails with `error`, whoever
/// makes it, HDF5 included. Later ones fail too, as on a disk that stays full, or `once` only.
class FailingSystem {
public:
    enum class Failure { stays, once };

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
