#include "Target.h"

#include "support/TempDir.h"

namespace cubes::fuzz {

void require(bool isKept, char const* promise) {
    if (!isKept) throw BrokenPromise(promise);
}

void requireReason(std::string const& message) {
    bool const isCut = message.empty() || message.ends_with(": ") || message.ends_with(":");
    if (isCut) throw BrokenPromise("the message \"" + message + "\" has no reason");
}

std::string pathOf(std::string const& name) {
    static test::TempDir const directory;
    return directory.file(name);
}

std::string fileOf(std::string const& name, std::string const& content) {
    auto const path = pathOf(name);
    test::writeFile(path, content);
    return path;
}

}
