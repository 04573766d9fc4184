#include "tool/FileBeside.h"

#include "tool/Durable.h"
#include "tool/Errors.h"

#include <fmt/format.h>

#include <fstream>
#include <random>

namespace cubes::tool {

namespace fs = std::filesystem;

FileBeside::FileBeside(fs::path const& place)
    : place_(place), path_(place.parent_path() /
                           fmt::format(".{}.{:08x}.cubes-tmp", place.filename().string(), std::random_device()())) {}

FileBeside::~FileBeside() {
    std::error_code ignored;
    fs::remove(path_, ignored);
}

bool FileBeside::canBeMade() const {
    return std::ofstream(path_).good();
}

void FileBeside::takePlace() const {
    flushToDisk(path_.string());
    std::error_code error;
    fs::rename(path_, place_, error);
    if (error) throw Failure(fmt::format("cannot write {}: {}", place_.string(), error.message()));
    flushToDisk(place_.parent_path().string());
}

}
