#include "support/TempDir.h"

#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace cubes::test {

std::string otherFileSystem(std::string const& directory) {
    constexpr char const* memory = "/dev/shm";
    struct stat here {};
    struct stat there {};
    bool const isOther =
        stat(directory.c_str(), &here) == 0 && stat(memory, &there) == 0 && here.st_dev != there.st_dev;
    return isOther ? memory : "";
}

std::string endlessDevice() {
    return "/dev/zero";
}

bool makeLink(std::string const& target, std::string const& link) {
    std::filesystem::create_symlink(target, link);
    return true;
}

bool isLink(std::string const& path) {
    return std::filesystem::is_symlink(path);
}

std::string temporaryDirectoryWithoutName() {
    return "/tmp/";
}

DirectoryLink::DirectoryLink(std::string const& directory, std::string link) : link_(std::move(link)) {
    std::filesystem::create_directory_symlink(directory, link_);
}

DirectoryLink::~DirectoryLink() {
    std::error_code ignored;
    std::filesystem::remove(link_, ignored);
}

}
