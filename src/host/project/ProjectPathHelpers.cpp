#include <cubes/project/ProjectPathHelpers.h>

#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/project/ProjectFile.h"

namespace ProjectPathHelpers {

namespace {

std::string withoutTrailingDelimiters(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

}

AnsiString getProjectDirectory(AnsiString directory) {
    std::string const given = withoutTrailingDelimiters(directory.c_str());
    if (given.empty()) return {};
    auto path = cubes::platform::toPath(withoutTrailingDelimiters(cubes::platform::absolutePath(given)));
    for (;; path = path.parent_path()) {
        std::string const candidate = cubes::platform::fromPath(path);
        if (cubes::project::isProject(candidate)) return AnsiString(candidate);
        if (path == path.parent_path()) return AnsiString(given);
    }
}

}
