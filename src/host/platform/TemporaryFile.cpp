#include "host/platform/TemporaryFile.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <chrono>
#include <filesystem>
#include <mutex>
#include <random>
#include <set>
#include <system_error>

namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

// Behind every content: on Windows a locked byte can neither be read nor written by others.
constexpr std::uint64_t heldByte = std::uint64_t{1} << 62;
constexpr auto leftoverAge = std::chrono::hours(24);

constexpr std::string_view suffix = ".cubes-tmp";
// Leaves room for the rest of the name if a file system allows 255 bytes.
constexpr std::size_t longestPart = 200;

// Every module of a process that is linked with this code draws its own random number, and so does a forked process.
std::string randomDigits() {
    constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::uint64_t number = std::uint64_t{random()} << 32 | random();
    std::string text(16, '0');
    for (char& digit : text) {
        digit = digits[number & 15u];
        number >>= 4;
    }
    return text;
}

// Once for each process, and in directories with a lock file once a day for all of them.
bool isSearchDue(std::string const& directory) {
    static std::mutex mutex;
    static std::set<std::string> searched;
    std::lock_guard const guard(mutex);
    if (!searched.insert(directory).second) return false;
    auto const lockFile = fromPath(toPath(directory) / lockFileName);
    return !exists(lockFile) || (isOlderThanADay(lockFile) && touch(lockFile));
}

void removeLeftovers(std::string const& directory) noexcept {
    try {
        if (!isSearchDue(directory)) return;
        std::error_code error;
        for (fs::directory_iterator entry(toPath(directory), error), end; !error && entry != end;
             entry.increment(error))
            if (isTemporaryName(fromPath(entry->path().filename()))) removeLeftover(fromPath(entry->path()));
    } catch (std::exception const&) {
        // The new file is what matters.
    }
}

File createBeside(std::string const& target) {
    removeLeftovers(directoryOf(target));
    return File::createLike(temporaryPath(target), target);
}

void rename(std::string const& file, std::string const& target) {
    if (!renameFile(file, target))
        throw std::system_error(make_error_code(std::errc::cross_device_link), "cannot put in place " + target);
}

}

std::string temporaryPath(std::string const& target) {
    auto const path = toPath(target);
    std::string const name = fromPath(path.filename()).substr(0, longestPart);
    return fromPath(path.parent_path() / toPath("." + name + "." + randomDigits() + std::string(suffix)));
}

bool isTemporaryName(std::string_view name) {
    return name.starts_with('.') && name.ends_with(suffix);
}

std::string targetOfTemporary(std::string const& path) {
    constexpr std::size_t dotAndDigits = 17;
    auto const file = toPath(path);
    std::string const name = fromPath(file.filename());
    if (!isTemporaryName(name) || name.size() <= 1 + dotAndDigits + suffix.size()) return path;
    return fromPath(file.parent_path() / toPath(name.substr(1, name.size() - 1 - dotAndDigits - suffix.size())));
}

bool mentionsTemporaryFile(std::string_view message) {
    return message.find(std::string(suffix) + ":") != std::string_view::npos;
}

bool isOlderThanADay(std::string const& path) noexcept {
    try {
        auto const now = std::chrono::system_clock::now().time_since_epoch();
        return now - std::chrono::microseconds(lastChange(path)) > leftoverAge;
    } catch (std::exception const&) {
        return false;
    }
}

bool removeLeftover(std::string const& path) noexcept {
    try {
        std::error_code error;
        auto const type = fs::symlink_status(toPath(path), error).type();
        if (type != fs::file_type::regular || !isOlderThanADay(path)) return false;
        auto held = File::openExisting(path);
        return held.tryLock(heldByte) && discardFile(path);
    } catch (std::exception const&) {
        return false;
    }
}

TemporaryFile::TemporaryFile(std::string const& target)
    : target_(target), isNew_(!exists(target)), file_(createBeside(target)) {
    hold();
}

TemporaryFile::~TemporaryFile() {
    if (isPublished_ || isLeft_) return;
    file_.close();
    discardFile(path());
}

// Where nothing can be locked, a file is only protected by its age.
void TemporaryFile::hold() noexcept {
    try {
        file_.tryLock(heldByte);
    } catch (std::system_error const&) {
        return;
    }
}

void TemporaryFile::copyFrom(std::string const& source) {
    copyContent(source, file_);
    if (isNew_) limitRights(file_, source);
    hold();
}

void TemporaryFile::linkTo(std::string const& source) {
    file_.close();
    discardFile(path());
    if (!linkFile(source, path())) {
        file_ = File::createLike(path(), target_);
        return copyFrom(source);
    }
    try {
        reopen();
    } catch (std::system_error const&) {
        // It may only be read, and is protected by its age alone.
        return;
    }
}

void TemporaryFile::reopen() {
    file_ = File::openExisting(path());
    hold();
}

void TemporaryFile::publish() {
    if (!isNew_) takeRights(file_, target_);
    file_.finish();
    rename(path(), target_);
    isPublished_ = true;
}

void TemporaryFile::commit() {
    file_.flush();
    publish();
    flushDirectory(directoryOf(target_));
}

}
