#include "tool/formats/WholeFile.h"

#include "tool/Paths.h"
#include "tool/PutInPlace.h"
#include "tool/formats/FormatError.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

namespace cubes::tool {

namespace fs = std::filesystem;

namespace {

std::string reasonOf(int error) {
    return error ? std::generic_category().message(error) : std::string("input/output error");
}

std::string cannotBe(std::string_view done, int error) {
    return fmt::format("cannot be {}: {}", done, reasonOf(error));
}

std::string temporaryBeside(std::string const& path) {
    std::random_device random;
    return fmt::format("{}.{:08x}{:08x}.part", path, random(), random());
}

// Renaming over a directory, a device or a pipe is never meant.
void requireRegularOrNew(std::string const& path) {
    std::error_code ignored;
    auto const status = fs::status(toPath(path), ignored);
    if (fs::is_directory(status)) throw FormatError(path, "is a directory, expected a file");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw FormatError(path, "is not a regular file");
}

}

std::string readWholeFile(std::string const& path) {
    std::error_code ignored;
    fs::path const place = toPath(path);
    if (fs::is_directory(place, ignored)) throw FormatError(path, "is a directory, expected a file");
    errno = 0;
    std::ifstream stream(place, std::ios::binary);
    if (!stream) throw FormatError(path, cannotBe("read", errno));
    auto const size = fs::is_regular_file(place, ignored) ? fs::file_size(place, ignored) : 0;
    std::string bytes;
    bytes.reserve(ignored ? 0 : size);
    char block[1 << 16];
    while (stream.read(block, sizeof block) || stream.gcount() > 0)
        bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    if (stream.bad()) throw FormatError(path, cannotBe("read", errno));
    return bytes;
}

NewFile::NewFile(std::string path) : path_(std::move(path)), temporary_(temporaryBeside(path_)) {
    requireRegularOrNew(path_);
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

void NewFile::publish() {
    errno = 0;
    stream_.close();
    if (!stream_) fail();
    if (auto const error = putInPlace(toPath(temporary_), toPath(path_)))
        throw FormatError(path_, fmt::format("cannot be written: {}", error.message()));
}

void NewFile::fail() const {
    throw FormatError(path_, cannotBe("written", errno));
}

}
