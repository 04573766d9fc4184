#include "host/platform/TemporaryFile.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <random>
#include <system_error>

namespace cubes::platform {

namespace {

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

void commitFile(std::string const& file, std::string const& target) {
    flushFile(file);
    rename(file, target);
    flushDirectory(directoryOf(target));
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
    rename(path(), target_);
    published_ = true;
}

void TemporaryFile::commit() {
    file_.flush();
    publish();
    flushDirectory(directoryOf(target_));
}

}
