#include "host/platform/ByteLock.h"

#include "host/platform/SystemFailure.h"

#include <cerrno>
#include <fcntl.h>

namespace cubes::platform {

namespace {

// Locks of the open file rather than of the process: two objects of one process exclude each
// other, and closing another descriptor of the file gives nothing up.
#ifdef F_OFD_SETLK
constexpr int setLock = F_OFD_SETLK;
#else
constexpr int setLock = F_SETLK;
#endif

}

std::optional<ByteLock> ByteLock::tryTake(std::string const& path, std::uint64_t position) {
    File file = File::openShared(path);
    struct flock request {};
    request.l_type = F_WRLCK;
    request.l_whence = SEEK_SET;
    request.l_start = static_cast<off_t>(position);
    request.l_len = 1;
    if (::fcntl(static_cast<int>(file.native()), setLock, &request) == 0) return ByteLock(std::move(file));
    if (errno == EAGAIN || errno == EACCES) return std::nullopt;
    throwSystemFailure("cannot lock", path);
}

}
