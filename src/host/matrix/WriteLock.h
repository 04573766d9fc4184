#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace cubes::matrix {

/// Another object or process holds the lock of a file.
class LockRefused : public std::runtime_error {
public:
    explicit LockRefused(std::string file)
        : std::runtime_error("it is locked by another writer; try again later"), file_(std::move(file)) {}

    std::string const& file() const noexcept { return file_; }

private:
    std::string file_;
};

/// An exclusive lock for writing a matrix file, held while the object lives. It belongs to the name, not to the current
/// file, so it outlives the file's replacement: it is a lock on one byte of the file ".cubes-lock" in the same
/// directory, at an offset computed from the name.
///
/// While it is held, opening or creating the file for writing is refused, in this process and in others, with one
/// exception: a process may save onto a file that it has open itself. Objects may be created and destroyed in any
/// thread.
class WriteLock {
public:
    enum class Purpose { open, create };

    /// Throws LockRefused, or std::system_error when the lock cannot be requested, as in a directory without write
    /// permission.
    WriteLock(std::string const& path, Purpose purpose);
    WriteLock(WriteLock const&) = delete;
    WriteLock& operator=(WriteLock const&) = delete;
    ~WriteLock();

private:
    std::string key_;
    Purpose purpose_;
    // Shared: an object that creates a file which this process has open uses the same lock.
    struct Held;
    std::shared_ptr<Held> held_;
};

/// Whether an object or a process has the lock of a file at the moment. False where that cannot be found out, as in a
/// directory whose lock file may not be read. No writer is refused because of the question, except for a moment on
/// Windows.
bool isLocked(std::string const& path);

/// Whether a file of this name (without directory) is the lock file of its directory.
bool isLockName(std::string const& name);

}
