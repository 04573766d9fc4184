#include "platform/NewFile.h"

#include <atomic>
#include <utility>

namespace cubes::routes::platform {

namespace {

// Leaves room for the rest of the name where a file system takes 255 bytes.
constexpr std::size_t longestPart = 200;

std::string temporaryPath(std::string const& target) {
    static std::atomic<unsigned> counter = 0;
    std::size_t const nameBegin = target.find_last_of(directoryEnds()) + 1;
    std::string const unique = std::to_string(processId()) + "-" + std::to_string(counter++);
    // Another maker of such files in this process has a counter of its own: "r" keeps the names apart.
    return target.substr(0, nameBegin) + "." + target.substr(nameBegin, longestPart) + "." + unique + "r.cubes-tmp";
}

}

NewFile::NewFile(std::string const& target) : target_(target), path_(temporaryPath(target)), file_(createFile(path_)) {}

NewFile::~NewFile() {
    close();
    if (!isInPlace_) discardFile(path_);
}

void NewFile::putInPlace() {
    flushFile(file_);
    close();
    replaceFile(path_, target_);
    isInPlace_ = true;
}

void NewFile::close() noexcept {
    if (file_ != none) closeFile(std::exchange(file_, none));
}

}
