#include "tool/FileBeside.h"

#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/PutInPlace.h"

#include <fmt/format.h>

#include <fstream>
#include <random>

namespace cubes::tool {

namespace fs = std::filesystem;

FileBeside::FileBeside(std::string const& place)
    : place_(toPath(place)),
      path_(place_.parent_path() /
            toPath(fmt::format(".{}.{:08x}.cubes-tmp", toText(place_.filename()), std::random_device()()))) {}

FileBeside::~FileBeside() {
    std::error_code ignored;
    fs::remove(path_, ignored);
}

std::string FileBeside::path() const {
    return toText(path_);
}

bool FileBeside::canBeMade() const {
    return std::ofstream(path_).good();
}

void FileBeside::takePlace() const {
    if (auto const error = putInPlace(path_, place_))
        throw Failure(fmt::format("cannot write {}: {}", toText(place_), error.message()));
}

}
