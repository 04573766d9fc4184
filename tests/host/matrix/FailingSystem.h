#pragma once

#include <string>

namespace cubes::test {

/// Makes the system fail for this process: while an object lives, the n-th of the calls that change
/// the disk (write, copy, flush, cut, rename, make a file), counted from 1, fails with `error`, whoever
/// makes it, HDF5 included. Later ones fail too, as on a disk that stays full, or `once` only.
class FailingSystem {
public:
    enum class Failure { stays, once };

    FailingSystem(int nth, int error, Failure failure = Failure::stays);
    /// Lets nothing fail and only watches.
    FailingSystem() : FailingSystem(0, 0) {}
    ~FailingSystem();
    FailingSystem(FailingSystem const&) = delete;
    FailingSystem& operator=(FailingSystem const&) = delete;

    /// Whether the failure has come.
    bool hasFailed() const;
    /// The flushes and renames that went well, in their order: "flush rename flush-directory".
    std::string settled() const;
};

}
