#include "host/platform/Files.h"

#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <system_error>

namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

fs::path withoutLastDelimiter(fs::path const& path) {
    return path.has_filename() ? path : path.parent_path();
}

// The same for all texts that name a path.
fs::path comparable(std::string const& path) {
    return withoutLastDelimiter(toPath(foldCase(absolutePath(withNativeDelimiters(path)))));
}

bool isInside(std::string const& path, std::string const& directory) {
    fs::path const outer = comparable(directory);
    fs::path const inner = comparable(path);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

// By a file, a directory or any link, even a dangling one.
bool isTaken(std::string const& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(toPath(path), ignored));
}

}

bool exists(std::string const& path) {
    std::error_code ignored;
    return !path.empty() && fs::exists(toPath(path), ignored);
}

bool isDirectory(std::string const& path) {
    std::error_code ignored;
    return fs::is_directory(toPath(path), ignored);
}

bool isRegularFile(std::string const& path) {
    std::error_code ignored;
    return fs::is_regular_file(toPath(path), ignored);
}

bool isLink(std::string const& path) {
    std::error_code ignored;
    return fs::is_symlink(toPath(path), ignored);
}

bool createDirectories(std::string const& path) {
    std::error_code error;
    fs::create_directories(toPath(path), error);
    return !error && isDirectory(path);
}

bool removeDirectory(std::string const& path, bool withContent) {
    if (!isDirectory(path)) return false;
    if (withContent) return removeTree(path);
    std::error_code error;
    return fs::remove(toPath(path), error) && !error;
}

bool removeFile(std::string const& path) {
    return isRegularFile(path) && discardFile(path);
}

bool copy(std::string const& source, std::string const& target, bool overwrite) {
    if (source.empty() || target.empty() || isInside(target, source)) return false;
    if (isRegularFile(source) && !isDirectory(target))
        return (overwrite || !exists(target)) && copyFile(source, target);
    return copyTree(source, target, overwrite);
}

bool copyFile(std::string const& source, std::string const& target) {
    if (!isRegularFile(source) || isDirectory(target) || isSamePath(source, target)) return false;
    try {
        replaceByCopy(source, target);
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

void replaceByCopy(std::string const& source, std::string const& target) {
    TemporaryFile beside(target);
    beside.copyFrom(source);
    beside.commit();
}

bool linkFile(std::string const& source, std::string const& target) noexcept {
    std::error_code noLink;
    fs::create_hard_link(toPath(source), toPath(target), noLink);
    return !noLink;
}

bool moveDirectory(std::string const& source, std::string const& target) {
    if (!isDirectory(source) || target.empty() || isTaken(target)) return false;
    try {
        return renameFile(source, target);
    } catch (std::system_error const&) {
        return false;
    }
}

// On Windows the standard library finds no directory equivalent to one that ends in a delimiter.
bool isSameDirectory(std::string const& first, std::string const& second) {
    std::error_code ignored;
    return fs::equivalent(withoutLastDelimiter(toPath(first)), withoutLastDelimiter(toPath(second)), ignored);
}

bool overlap(std::string const& first, std::string const& second) {
    std::error_code error;
    if (fs::equivalent(toPath(first), toPath(second), error)) return true;
    std::string const a = fromPath(withoutLinks(toPath(first)));
    std::string const b = fromPath(withoutLinks(toPath(second)));
    return isInside(a, b) || isInside(b, a);
}

std::string directoryOf(std::string const& path) {
    fs::path const directory = toPath(path).parent_path();
    return directory.empty() ? "." : fromPath(directory);
}

std::string absolutePath(std::string const& path) {
    return fromPath(normalForm(toPath(path)));
}

bool isPresent(std::string const& path) {
    std::error_code failure;
    bool const isThere = !path.empty() && fs::exists(toPath(path), failure);
    if (!failure || failure == std::errc::filename_too_long) return isThere;
    throw std::system_error(failure, "cannot examine " + path);
}

std::uint64_t fileSize(std::string const& path) {
    return fs::file_size(toPath(path));
}

std::vector<std::string> fileNamesIn(std::string const& directory) {
    std::vector<std::string> names;
    std::error_code unknown;
    for (auto const& entry : fs::directory_iterator(toPath(directory)))
        if (entry.is_regular_file(unknown)) names.push_back(fromPath(entry.path().filename()));
    std::ranges::sort(names);
    return names;
}

std::int64_t lastChange(std::string const& path) {
    auto const changed = fs::file_time_type::clock::to_sys(fs::last_write_time(toPath(path)));
    return std::chrono::duration_cast<std::chrono::microseconds>(changed.time_since_epoch()).count();
}

bool isSamePath(std::string const& first, std::string const& second) {
    return !first.empty() && !second.empty() && comparable(first) == comparable(second);
}

}
