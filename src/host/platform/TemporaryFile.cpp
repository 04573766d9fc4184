#include "host/platform/TemporaryFile.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <algorithm>
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
// A second name of an old file has the file's time, so that its age says nothing.
constexpr std::string_view oldSuffix = ".cubes-old";
// What Windows cannot remove yet.
constexpr std::string_view outdatedSuffix = ".old.cubes-tmp";
// Leaves room for the rest of the name if a file system allows 255 bytes.
constexpr std::size_t longestPart = 200;

constexpr std::string_view hexadecimal = "0123456789abcdef";
constexpr std::size_t digitCount = 16;

// Every module of a process that is linked with this code draws its own random number, and so does a forked process.
std::string randomDigits() {
    std::random_device random;
    std::uint64_t number = std::uint64_t{random()} << 32 | random();
    std::string text(digitCount, '0');
    for (char& digit : text) {
        digit = hexadecimal[number & 15u];
        number >>= 4;
    }
    return text;
}

// ".<target>.", as far as the target's name is known.
std::string beginningOf(std::string const& target) {
    return "." + fromPath(toPath(target).filename()).substr(0, longestPart) + ".";
}

std::string pathBeside(std::string const& target, std::string_view ending) {
    return fromPath(toPath(target).parent_path() / toPath(beginningOf(target) + randomDigits() + std::string(ending)));
}

// The target in ".<target>.<16 digits><suffix>"; empty for every other name.
std::string_view targetIn(std::string_view name) {
    for (auto const ending : {outdatedSuffix, suffix, oldSuffix}) {
        if (!name.ends_with(ending)) continue;
        name.remove_suffix(ending.size());
        bool const isLong = name.size() > digitCount + 2;
        auto const digits = isLong ? name.size() - digitCount : 0;
        bool const isOurs = isLong && name[0] == '.' && name[digits - 1] == '.' &&
                            name.find_first_not_of(hexadecimal, digits) == std::string_view::npos;
        return isOurs ? name.substr(1, digits - 2) : std::string_view();
    }
    return {};
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
            removeLeftover(fromPath(entry->path()));
    } catch (std::exception const&) {
        // The new file is what matters.
    }
}

File createBeside(std::string const& target, TemporaryFile::Purpose purpose) {
    removeLeftovers(directoryOf(target));
    bool const isNew = purpose == TemporaryFile::Purpose::replace;
    return File::createLike(pathBeside(target, isNew ? suffix : oldSuffix), target);
}

void rename(std::string const& file, std::string const& target) {
    if (!renameFile(file, target))
        throw std::system_error(make_error_code(std::errc::cross_device_link), "cannot put in place " + target);
}

}

std::string temporaryPath(std::string const& target) {
    return pathBeside(target, suffix);
}

std::string oldPath(std::string const& target) {
    return pathBeside(target, oldSuffix);
}

bool isTemporaryName(std::string_view name) {
    return !targetIn(name).empty();
}

bool isOldName(std::string_view name) {
    return name.ends_with(oldSuffix) && isTemporaryName(name);
}

bool isSetAside(std::string_view name) {
    return isTemporaryName(name) && name.ends_with(outdatedSuffix);
}

std::string targetOfTemporary(std::string const& path) {
    auto const file = toPath(path);
    std::string const name = fromPath(file.filename());
    auto const target = targetIn(name);
    return target.empty() ? path : fromPath(file.parent_path() / toPath(std::string(target)));
}

bool isHeld(std::string const& path) {
    try {
        return File::openForReading(path).isLockedByOthers(heldByte, 1);
    } catch (std::system_error const&) {
        // It is gone, or nothing can be locked here.
        return false;
    }
}

bool isBeingReplaced(std::string const& target) {
    auto const directory = directoryOf(target);
    auto const isHeldHere = [&](std::string const& name) {
        bool const isOfTarget = name.starts_with(beginningOf(target)) && isTemporaryName(name) &&
                                targetIn(name).size() + 2 == beginningOf(target).size();
        return isOfTarget && isHeld(fromPath(toPath(directory) / toPath(name)));
    };
    return std::ranges::any_of(fileNamesIn(directory), isHeldHere);
}

bool mentionsTemporaryFile(std::string_view message) {
    auto const isIn = [message](std::string_view ending) {
        return message.find(std::string(ending) + ":") != std::string_view::npos;
    };
    return isIn(suffix) || isIn(oldSuffix);
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
        std::string const name = fromPath(toPath(path).filename());
        if (!isTemporaryName(name) || isOldName(name)) return false;
        auto const type = fs::symlink_status(toPath(path), error).type();
        if (type != fs::file_type::regular || !isOlderThanADay(path)) return false;
        auto held = File::openExisting(path);
        return held.tryLock(heldByte) && discardFile(path);
    } catch (std::exception const&) {
        return false;
    }
}

TemporaryFile::TemporaryFile(std::string const& target, Purpose purpose)
    : target_(target), isNew_(!exists(target)), file_(createBeside(target, purpose)) {
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
