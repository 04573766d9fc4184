#include "catalogue/MatrixPlacing.h"

#include "host/matrix/Publishing.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/CopyContent.h"
#include "host/platform/Files.h"

#include <exception>
#include <optional>

namespace cubes {

namespace {

using matrix::WriteLock;

bool canTakeThePlace(std::string const& source, std::string const& target) {
    return platform::isRegularFile(source) && !platform::isDirectory(target) && !platform::overlap(source, target);
}

void copyOver(std::string const& source, std::string const& target) {
    platform::TemporaryFile beside(target);
    platform::copyContent(source, beside.file());
    matrix::publish(beside);
}

// Gives the file its new name, which lasts before the old one goes. Where that can't be done in one
// step the source may stay: the target is complete all the same.
void takeNewName(std::string const& source, std::string const& target, bool isFlushed) {
    if (!platform::renameFile(source, target)) {
        copyOver(source, target);
        platform::discardFile(source);
    } else if (isFlushed) {
        platform::flushDirectory(platform::directoryOf(target));
    }
}

void moveOver(std::string const& source, std::string const& target) {
    bool const isFlushed = matrix::isToBeFlushed(target);
    // It may come from a directory whose files are not.
    if (isFlushed) platform::flushFile(source);
    takeNewName(source, target, isFlushed);
    std::string const left = platform::directoryOf(source);
    if (isFlushed && !platform::isSamePath(left, platform::directoryOf(target))) platform::flushDirectory(left);
}

}

bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock) {
    if (!canTakeThePlace(source, target)) return false;
    try {
        std::optional<WriteLock> held;
        if (lock & lsWrite) held.emplace(target, WriteLock::Purpose::create);
        copyOver(source, target);
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

bool moveMatrixFile(std::string const& source, std::string const& target) {
    if (!canTakeThePlace(source, target)) return false;
    try {
        WriteLock const held(target, WriteLock::Purpose::create);
        moveOver(source, target);
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

}
