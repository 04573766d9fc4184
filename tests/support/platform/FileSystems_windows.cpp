#include "support/Process.h"
#include "support/TempDir.h"

#include <stdexcept>
#include <utility>

namespace cubes::test {

// Under Wine all of the system below is one drive; its memory is a file system of its own there too.
std::string otherFileSystem(std::string const&) {
    constexpr char const* memory = "Z:\\dev\\shm";
    return std::filesystem::is_directory(memory) ? memory : "";
}

std::string endlessDevice() {
    return {};
}

// Wine makes none, and shows those of the system below as what they lead to.
bool makeLink(std::string const&, std::string const&) {
    return false;
}

bool isLink(std::string const&) {
    return false;
}

std::string temporaryDirectoryWithoutName() {
    constexpr char const* fixed = "c:\\temp\\";
    std::filesystem::create_directories(fixed);
    return fixed;
}

DirectoryLink::DirectoryLink(std::string const& directory, std::string link) : link_(std::move(link)) {
    if (run({"ln", "-s", directory, link_}).exitCode != 0) throw std::runtime_error("no link " + link_);
}

// A program of Wine takes it for a directory, and would empty that and remove nothing.
DirectoryLink::~DirectoryLink() {
    try {
        run({"rm", link_});
    } catch (std::exception const&) {
        // It stays then.
    }
}

}
