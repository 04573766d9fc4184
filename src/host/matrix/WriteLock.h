#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace cubes::matrix {

/// Somebody else holds the lock of a file.
class LockRefused : public std::runtime_error {
public:
    explicit LockRefused(std::string file)
        : std::runtime_error("another program or object is writing the file; try again later"),
          file_(std::move(file)) {}

    std::string const& file() const noexcept { return file_; }

private:
    std::string file_;
};

/// The exclusive right to write a matrix file, while the object lives. It belongs to the name, not
/// to the file of the moment, so it outlives the file's replacement: it is a lock on one byte of
/// the file ".cubes-lock" in the same directory, at a place computed from the name.
///
/// Others that open or create the file for writing are refused, in this process and in others,
/// with one exception: a process may create a file anew (save onto it) that it has open itself.
class WriteLock {
public:
    enum class Purpose { open, create };

    /// Throws LockRefused, or std::system_error when the lock cannot be asked for, as in a
    /// directory that cannot be written to.
    WriteLock(std::string const& path, Purpose purpose);
    WriteLock(WriteLock const&) = delete;
    WriteLock& operator=(WriteLock const&) = delete;
    ~WriteLock();

private:
    std::string key_;
    Purpose purpose_;
    // Shared: an object that creates a file which this process has open rests on the same lock.
    struct Held;
    std::shared_ptr<Held> held_;
};

/// Whether a file of this name (without directory) is the lock file of its directory.
bool isLockName(std::string const& name);

}
