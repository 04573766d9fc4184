#include "support/Process.h"
#include "support/TempDir.h"

#include <stdexcept>
#include <utility>

namespace cubes::test {

// Under Wine the whole Linux file system is one drive; its memory file system is a separate file system there too.
std::string otherFileSystem(std::string const&) {
    constexpr char const* memory = "Z:\\dev\\shm";
    return std::filesystem::is_directory(memory) ? memory : "";
}

std::string endlessDevice() {
    return {};
}

// Wine creates none, and presents those of Linux as their targets.
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

// A Wine program takes it for a directory, and would empty that and remove nothing.
DirectoryLink::~DirectoryLink() {
    try {
        run({"rm", link_});
    } catch (std::exception const&) {
        // The target is kept then.
    }
}

}
