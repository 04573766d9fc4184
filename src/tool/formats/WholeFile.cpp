#include "tool/formats/WholeFile.h"

#include "host/platform/TemporaryFile.h"
#include "tool/Errors.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

namespace cubes::tool {

namespace fs = std::filesystem;

namespace {

// The standard streams keep their reason in errno, if anywhere.
[[noreturn]] void fail() {
    throw FormatError(errno ? std::generic_category().message(errno) : std::string("input/output error"));
}

std::string temporaryBeside(std::string const& path) {
    std::random_device random;
    return fmt::format("{}.{:08x}{:08x}.part", path, random(), random());
}

}

// Replacing a directory, a device or a pipe is never intended.
void requireWritablePath(std::string const& path) {
    std::error_code ignored;
    auto const file = toPath(path);
    auto const directory = file.parent_path();
    if (!directory.empty() && !fs::is_directory(directory, ignored))
        throw FormatError(fmt::format("there is no directory {}", toText(directory)));
    auto const status = fs::status(file, ignored);
    if (fs::is_directory(status)) throw FormatError("it is a directory");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw FormatError("it is not a regular file");
}

std::string readWholeFile(std::string const& path) {
    std::error_code ignored;
    fs::path const file = toPath(path);
    if (fs::is_directory(file, ignored)) throw FormatError("it is a directory");
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) fail();
    auto const size = fs::is_regular_file(file, ignored) ? fs::file_size(file, ignored) : 0;
    std::string bytes;
    bytes.reserve(ignored ? 0 : size);
    char block[1 << 16];
    while (stream.read(block, sizeof block) || stream.gcount() > 0)
        bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    if (stream.bad()) fail();
    if (bytes.find('\0') != std::string::npos) throw FormatError("it is not a text file: it holds zero bytes");
    return bytes;
}

NewFile::NewFile(std::string path) : path_(std::move(path)), temporary_(temporaryBeside(path_)) {
    requireWritablePath(path_);
    errno = 0;
    stream_.open(toPath(temporary_), std::ios::binary);
    if (!stream_) fail();
}

NewFile::~NewFile() {
    stream_.close();
    std::error_code ignored;
    fs::remove(toPath(temporary_), ignored);
}

void NewFile::write(std::string_view bytes) {
    if (!stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) fail();
}

void NewFile::commit() {
    errno = 0;
    stream_.close();
    if (!stream_) fail();
    try {
        platform::commitFile(temporary_, path_);
    } catch (std::system_error const& error) {
        throw FormatError(error.code().message());
    }
}

}
