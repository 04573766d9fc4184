#include "host/platform/CopyContent.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace cubes::platform {

namespace {

constexpr std::uint64_t pieceSize = std::uint64_t{1} << 20;

int descriptor(File const& file) {
    return static_cast<int>(file.native());
}

// What not everybody may read stays so. A file system without rights has none to keep.
void keepRights(File const& source, File const& target) {
    struct stat status {};
    if (::fstat(descriptor(source), &status) == 0) ::fchmod(descriptor(target), status.st_mode);
}

#ifdef __linux__

bool clone(File const& source, File const& target) {
    return ::ioctl(descriptor(target), FICLONE, descriptor(source)) == 0;
}

/// Gives how much the kernel has copied by itself; not all file systems can.
std::uint64_t copyInKernel(File const& source, File const& target, std::uint64_t size) {
    off_t from = 0;
    off_t to = 0;
    while (static_cast<std::uint64_t>(from) < size) {
        auto const rest = static_cast<std::size_t>(size - static_cast<std::uint64_t>(from));
        if (::copy_file_range(descriptor(source), &from, descriptor(target), &to, rest, 0) <= 0) break;
    }
    return static_cast<std::uint64_t>(from);
}

#else

bool clone(File const&, File const&) {
    return false;
}

std::uint64_t copyInKernel(File const&, File const&, std::uint64_t) {
    return 0;
}

#endif

}

void copyContent(std::string const& source, File& target) {
    File const original = File::openForReading(source);
    keepRights(original, target);
    if (clone(original, target)) return;
    auto const size = original.size();
    std::vector<std::byte> buffer;
    for (auto done = copyInKernel(original, target, size); done < size; done += buffer.size()) {
        buffer.resize(static_cast<std::size_t>(std::min(size - done, pieceSize)));
        original.readAt(done, buffer);
        target.writeAt(done, buffer);
    }
}

}
