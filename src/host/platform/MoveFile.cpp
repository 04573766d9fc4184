#include "host/platform/MoveFile.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <filesystem>
#include <system_error>

namespace cubes::platform {

namespace {

namespace fs = std::filesystem;

bool isTaken(fs::path const& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

}

bool moveFile(std::string const& source, std::string const& target) {
    if (source.empty() || target.empty() || isTaken(toPath(target))) return false;
    std::error_code error;
    fs::rename(toPath(source), toPath(target), error);
    if (error != std::errc::cross_device_link) return !error;
    if (!copyFile(source, target)) return false;
    // A source that cannot be removed is left over: the target is complete all the same.
    removeFile(source);
    return true;
}

}
