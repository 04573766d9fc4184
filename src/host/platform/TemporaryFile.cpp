#include "host/platform/TemporaryFile.h"

#include "host/platform/Paths.h"

#include <atomic>
#include <system_error>

namespace cubes::platform {

namespace {

constexpr std::string_view suffix = ".cubes-tmp";
// Leaves room for the rest of the name where a file system takes 255 bytes.
constexpr std::size_t longestPart = 200;

}

std::string temporaryPath(std::string const& target) {
    static std::atomic<unsigned> counter = 0;
    auto const path = toPath(target);
    std::string const name = fromPath(path.filename()).substr(0, longestPart);
    std::string const unique = std::to_string(processId()) + "-" + std::to_string(counter++);
    return fromPath(path.parent_path() / toPath("." + name + "." + unique + std::string(suffix)));
}

TemporaryFile::TemporaryFile(std::string const& target)
    : target_(target), file_(File::createNew(temporaryPath(target))) {}

TemporaryFile::~TemporaryFile() {
    if (published_) return;
    file_.close();
    discardFile(path());
}

void TemporaryFile::publish() {
    file_.close();
    if (!renameFile(path(), target_))
        throw std::system_error(make_error_code(std::errc::cross_device_link), "cannot put in place " + target_);
    published_ = true;
}

bool isTemporaryName(std::string_view name) {
    return name.starts_with('.') && name.ends_with(suffix);
}

}
