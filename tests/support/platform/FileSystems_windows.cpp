#include "support/Process.h"
#include "support/TempDir.h"

#include <stdexcept>

namespace cubes::test {

// Under Wine all of the system below is one drive; its memory is a file system of its own there too.
std::string otherFileSystem(std::string const&) {
    constexpr char const* memory = "Z:\\dev\\shm";
    return std::filesystem::is_directory(memory) ? memory : "";
}

std::string temporaryDirectoryWithoutName() {
    constexpr char const* fixed = "c:\\temp\\";
    std::filesystem::create_directories(fixed);
    return fixed;
}

// Wine follows the links of the system below, and makes none.
void makeLink(std::string const& directory, std::string const& link) {
    if (run({"ln", "-s", directory, link}).exitCode != 0) throw std::runtime_error("no link " + link);
}

bool readFilesCanBeRemoved() {
    return false;
}

}
