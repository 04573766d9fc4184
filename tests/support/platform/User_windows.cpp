#include "support/User.h"

#include "support/TempDir.h"

#include <filesystem>
#include <fstream>

namespace cubes::test {

// A read-only file is read-only for all users, except for the superuser of the Linux system under Wine.
bool canBeOrdinaryUser() {
    TempDir const directory;
    std::string const file = directory.file("file");
    writeFile(file, "");
    std::filesystem::permissions(file, std::filesystem::perms(0444));
    bool const isRefused = !std::ofstream(file, std::ios::app);
    std::filesystem::permissions(file, std::filesystem::perms(0666));
    return isRefused;
}

void becomeOrdinaryUser() {}

}
