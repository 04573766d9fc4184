#include "store/RemovalLock.h"

#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"

#include <exception>
#include <system_error>

namespace cubes::store {

namespace {

// The first bytes of the lock file, one for each holder. The locks of files are spread over 63 bits.
constexpr std::uint64_t places = 256;

std::string lockFileOf(std::string const& directory) {
    return platform::fromPath(platform::toPath(directory) / platform::lockFileName);
}

}

RemovalLock::RemovalLock(std::string const& directory) {
    auto const file = lockFileOf(directory);
    try {
        for (std::uint64_t place = 0; place < places && !place_; ++place)
            place_ = platform::ByteLock::tryTake(file, place);
    } catch (std::system_error const&) {
        // Who cannot write to the directory removes no files there.
    }
}

bool RemovalLock::isHeld(std::string const& directory) noexcept {
    try {
        return platform::File::openForReading(lockFileOf(directory)).isLockedByOthers(0, places);
    } catch (std::exception const&) {
        return false;
    }
}

}
