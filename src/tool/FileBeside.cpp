#include "tool/FileBeside.h"

#include "host/platform/Files.h"
#include "host/platform/TemporaryFile.h"
#include "tool/Errors.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <fstream>
#include <system_error>

namespace cubes::tool {

FileBeside::FileBeside(std::string const& place) : place_(place), path_(platform::temporaryPath(place)) {}

FileBeside::~FileBeside() {
    platform::discardFile(path_);
}

bool FileBeside::canBeMade() const {
    return std::ofstream(toPath(path_)).good();
}

void FileBeside::takePlace() const {
    try {
        platform::commitFile(path_, place_);
    } catch (std::system_error const& error) {
        throw Failure(fmt::format("cannot write {}: {}", place_, error.code().message()));
    }
}

}
