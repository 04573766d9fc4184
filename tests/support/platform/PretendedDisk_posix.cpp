#include "support/platform/PretendedDisk.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t page = 4096;

std::uintmax_t inPages(std::uintmax_t bytes) {
    return (bytes + page - 1) / page * page;
}

}

PretendedDisk::PretendedDisk(std::string directory, std::uintmax_t bytes)
    : directory_(fs::weakly_canonical(directory).string() + "/"), bytes_(bytes) {}

bool PretendedDisk::holds(std::string const& path) const {
    std::error_code unknown;
    auto const whole = fs::absolute(path, unknown).lexically_normal().string();
    return !unknown && (whole + "/").starts_with(directory_);
}

bool PretendedDisk::holds(int file) const {
    std::error_code unknown;
    auto const path = fs::read_symlink("/proc/self/fd/" + std::to_string(file), unknown).string();
    return !unknown && path.starts_with(directory_);
}

bool PretendedDisk::hasRoom(int file, off_t end) const {
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || !holds(file)) return true;
    auto const before = inPages(static_cast<std::uintmax_t>(status.st_size));
    auto const after = inPages(static_cast<std::uintmax_t>(end));
    return after <= before || after - before <= room();
}

bool PretendedDisk::hasRoomFor(int file, std::size_t count) const {
    bool const isAppended = fcntl(file, F_GETFL) & O_APPEND;
    off_t const place = lseek(file, 0, isAppended ? SEEK_END : SEEK_CUR);
    return place < 0 || hasRoom(file, place + static_cast<off_t>(count));
}

std::uintmax_t PretendedDisk::room() const {
    return bytes_ - std::min(used(), bytes_);
}

// Files that others remove meanwhile count as empty.
std::uintmax_t PretendedDisk::used() const {
    std::uintmax_t sum = 0;
    std::error_code gone;
    for (auto entry = fs::recursive_directory_iterator(directory_, gone); !gone && entry != fs::end(entry);
         entry.increment(gone)) {
        std::error_code noFile;
        auto const size = entry->is_regular_file(noFile) ? entry->file_size(noFile) : 0;
        if (!noFile) sum += inPages(size);
    }
    return sum;
}

}
