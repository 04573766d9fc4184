#include "project/CreatedPaths.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <cubes/project/TRkProjectException.h>

#include <filesystem>

namespace cubes::project {

CreatedPaths::~CreatedPaths() {
    for (auto path = paths_.rbegin(); path != paths_.rend(); ++path) {
        std::error_code ignored;
        std::filesystem::remove(platform::toPath(*path), ignored);
    }
}

void CreatedPaths::makeDirectory(std::string const& path) {
    if (platform::isDirectory(path)) return;
    auto const native = platform::toPath(path);
    if (native.has_parent_path() && native.parent_path() != native)
        makeDirectory(platform::fromPath(native.parent_path()));
    std::error_code error;
    if (std::filesystem::create_directory(native, error)) return paths_.push_back(path);
    // Another process may have created it meanwhile.
    if (platform::isDirectory(path)) return;
    throw TRkProjectException(
        "creating the directory '" + path + "' failed: " + (error ? error.message() : "a file of that name exists"),
        path);
}

void CreatedPaths::expectFile(std::string const& path) {
    if (!isPresent(path)) paths_.push_back(path);
}

bool isPresent(std::string const& path) {
    try {
        return platform::isPresent(path);
    } catch (std::system_error const& error) {
        throw TRkProjectException(error.what(), path);
    }
}

}
