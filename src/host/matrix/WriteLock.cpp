#include "host/matrix/WriteLock.h"

#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "host/platform/System.h"
#include "host/platform/TemporaryFile.h"

#include <xxhash.h>

#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace cubes::matrix {

namespace {

// The directory without links, so that a file has the same key by any path.
std::string keyOf(std::string const& path) {
    auto const file = platform::fromRoot(platform::toPath(path));
    auto const directory = platform::withoutLinks(file.parent_path());
    return platform::foldCase(platform::fromPath(directory / file.filename()));
}

std::string lockFileOf(std::string const& path) {
    return platform::fromPath(platform::fromRoot(platform::toPath(path)).parent_path() / platform::lockFileName);
}

// The lock on a byte of the lock file; nothing when somebody else holds it. Users know the directory, not the lock
// file.
std::optional<platform::ByteLock> tryLock(std::string const& path, std::uint64_t position) {
    auto const lockFile = lockFileOf(path);
    try {
        return platform::ByteLock::tryTake(lockFile, position);
    } catch (std::system_error const& error) {
        throw std::system_error(error.code(), "cannot write " + platform::directoryOf(lockFile));
    }
}

// File positions are signed numbers. Programs of different encodings agree on a name in UTF-8.
std::uint64_t positionOf(std::string const& key) {
    std::string const name = platform::toUtf8(platform::fromPath(platform::toPath(key).filename()));
    return XXH3_64bits(name.data(), name.size()) >> 1;
}

}

// The locks that this process holds on one file.
struct WriteLock::Held {
    platform::ByteLock lock;
    std::uint64_t process;
    bool opened = false;
    bool created = false;

    bool& flag(Purpose purpose) { return purpose == Purpose::open ? opened : created; }
};

namespace {

template <typename Held>
struct Register {
    std::mutex mutex;
    std::map<std::string, std::weak_ptr<Held>> byKey;

    static Register& instance() {
        static Register only;
        return only;
    }
};

}

WriteLock::WriteLock(std::string const& path, Purpose purpose) : key_(keyOf(path)), purpose_(purpose) {
    auto& known = Register<Held>::instance();
    std::lock_guard const guard(known.mutex);
    held_ = known.byKey[key_].lock();
    // A forked process has its parent's objects but not its parent's locks.
    if (held_ && held_->process != platform::processId()) held_.reset();
    if (held_ && (purpose == Purpose::open || held_->created)) {
        held_.reset();
        throw LockRefused(path);
    }
    if (!held_) {
        auto lock = tryLock(path, positionOf(key_));
        if (!lock) throw LockRefused(path);
        held_ = std::make_shared<Held>(Held{std::move(*lock), platform::processId()});
        known.byKey[key_] = held_;
    }
    held_->flag(purpose) = true;
}

WriteLock::~WriteLock() {
    auto& known = Register<Held>::instance();
    std::lock_guard const guard(known.mutex);
    held_->flag(purpose_) = false;
    held_.reset();
    auto const entry = known.byKey.find(key_);
    if (entry != known.byKey.end() && entry->second.expired()) known.byKey.erase(entry);
}

bool isLocked(std::string const& path) {
    try {
        return platform::File::openForReading(lockFileOf(path)).isLockedByOthers(positionOf(keyOf(path)), 1);
    } catch (std::system_error const&) {
        return false;
    }
}

bool isLockName(std::string const& name) {
    return name == platform::lockFileName;
}

}
