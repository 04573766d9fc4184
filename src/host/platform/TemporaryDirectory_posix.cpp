#include "host/platform/TemporaryDirectory.h"

#include "host/platform/Environment.h"

namespace cubes::platform {

std::string temporaryDirectory() {
    constexpr std::size_t longest = 259;
    std::string directory = environment("TMPDIR").value_or("/tmp");
    if (!directory.ends_with('/')) directory += '/';
    return directory.size() > longest ? "/tmp/" : directory;
}

}
