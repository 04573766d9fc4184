#include "tool/PutInPlace.h"

#include <fcntl.h>
#include <unistd.h>

namespace cubes::tool {

namespace {

// Waits until a file, or the names in a directory, are on the disk; for those that can be asked.
void flush(std::filesystem::path const& path) {
    int const opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0) return;
    ::fsync(opened);
    ::close(opened);
}

}

std::error_code putInPlace(std::filesystem::path const& file, std::filesystem::path const& place) {
    flush(file);
    std::error_code error;
    std::filesystem::rename(file, place, error);
    if (!error) flush(place.has_parent_path() ? place.parent_path() : ".");
    return error;
}

}
