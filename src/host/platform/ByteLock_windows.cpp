#include "host/platform/ByteLock.h"

#include "host/platform/SystemFailure.h"

#include <windows.h>

namespace cubes::platform {

std::optional<ByteLock> ByteLock::tryTake(std::string const& path, std::uint64_t position) {
    File file = File::openShared(path);
    OVERLAPPED where{};
    where.Offset = static_cast<DWORD>(position);
    where.OffsetHigh = static_cast<DWORD>(position >> 32);
    constexpr DWORD exclusiveNow = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    if (::LockFileEx(reinterpret_cast<HANDLE>(file.native()), exclusiveNow, 0, 1, 0, &where))
        return ByteLock(std::move(file));
    if (::GetLastError() == ERROR_LOCK_VIOLATION || ::GetLastError() == ERROR_IO_PENDING) return std::nullopt;
    throwSystemFailure("cannot lock", path);
}

}
