#include "catalogue/MatrixPlacing.h"

#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/MoveFile.h"

#include <optional>
#include <stdexcept>

namespace cubes {

bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock) {
    if (platform::overlap(source, target)) return false;
    try {
        std::optional<matrix::WriteLock> held;
        if (lock & lsWrite) held.emplace(target, matrix::WriteLock::Purpose::create);
        return platform::copyFile(source, target);
    } catch (std::runtime_error const&) {
        return false;
    }
}

bool moveMatrixFile(std::string const& source, std::string const& target) {
    if (!platform::exists(source) || platform::overlap(source, target)) return false;
    try {
        matrix::WriteLock const held(target, matrix::WriteLock::Purpose::create);
        platform::removeFile(target);
        return platform::moveFile(source, target);
    } catch (std::runtime_error const&) {
        return false;
    }
}

}
